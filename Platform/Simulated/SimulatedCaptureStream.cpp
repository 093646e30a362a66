#include "Platform/Simulated/SimulatedCaptureStream.h"

#include "Async/Completion.h"

#include <utility>

namespace kestrove {

namespace {

using Result = std::expected<void, PlatformError>;
using Stream = std::shared_ptr<SimulatedStream>;

// Each of them keeps the desktop's side alone alive, not the stream that its user may let go of.

SimulatedStream::Answer answerTo(const Completion<Result>& completion) {
    return [completion](Result result) { completion.complete(std::move(result)); };
}

Task<Result> start(MainLoop& loop, Stream stream) {
    const Completion<Result> completion(loop);
    stream->start(answerTo(completion));
    co_return co_await completion;
}

Task<Result> stop(MainLoop& loop, Stream stream) {
    const Completion<Result> completion(loop);
    stream->stop(answerTo(completion));
    co_return co_await completion;
}

Task<Result> update(MainLoop& loop, Stream stream, ContentFilter filter) {
    const Completion<Result> completion(loop);
    stream->updateContentFilter(std::move(filter), answerTo(completion));
    co_return co_await completion;
}

Task<Result> configure(MainLoop& loop, Stream stream, StreamConfiguration configuration) {
    const Completion<Result> completion(loop);
    stream->updateConfiguration(configuration, answerTo(completion));
    co_return co_await completion;
}

} // namespace

Result SimulatedCaptureStream::addScreenOutput(std::shared_ptr<SerialQueue> queue,
                                               SampleHandler handler) {
    return m_stream->addScreenOutput(std::move(queue), std::move(handler));
}

Task<Result> SimulatedCaptureStream::startCapture() {
    return start(m_loop, m_stream);
}

Task<Result> SimulatedCaptureStream::stopCapture() {
    return stop(m_loop, m_stream);
}

Task<Result> SimulatedCaptureStream::updateContentFilter(ContentFilter filter) {
    return update(m_loop, m_stream, std::move(filter));
}

Task<Result> SimulatedCaptureStream::updateConfiguration(StreamConfiguration configuration) {
    return configure(m_loop, m_stream, configuration);
}

} // namespace kestrove

#pragma once

#include "Async/Completion.h"
#include "Async/MainLoop.h"
#include "Desktop/ScreenCapture.h"
#include "Tests/Support/ScriptedDesktop/CallLog.h"
#include "Tests/Support/ScriptedDesktop/ScriptedSample.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace kestrove {

/// A capture service whose every answer a test gives, delays or refuses. Operations are named
/// "content", "output", "start", "filter", "configuration" and "stop"; each is logged when it is
/// asked.
class ScriptedCaptureService final : public ScreenCapture {
public:
    /// What is left of a stream when its user has let go of it, so that a test can still play the
    /// platform that is late.
    struct StreamRecord {
        StreamRecord(int streamNumber, ContentFilter firstFilter, StreamConfiguration first,
                     StopHandler stopHandler)
            : number(streamNumber)
            , filter(std::move(firstFilter))
            , configuration(std::move(first))
            , stopped(std::move(stopHandler)) {}

        /// Counted from 1.
        int number;
        ContentFilter filter;
        StreamConfiguration configuration;
        StopHandler stopped;
        std::shared_ptr<SerialQueue> queue;
        SampleHandler handler;
        bool isStarted = false;
        bool isStopped = false;
        bool isDestroyed = false;

        [[nodiscard]] bool isCapturing() const { return isStarted && !isStopped && !isDestroyed; }
        /// Puts a sample into the queue, whatever state the stream is in.
        void deliver(std::shared_ptr<ScriptedSample> sample) const {
            queue->post([handle = handler, sent = std::move(sample)] { handle(sent); });
        }
        void deliver(const std::string& name) const {
            deliver(std::make_shared<ScriptedSample>(name, configuration.generation));
        }
    };
    using Answer = std::expected<void, PlatformError>;

    ScriptedCaptureService(MainLoop& loop, CallLog& calls)
        : m_loop(loop)
        , m_calls(calls) {}

    Task<std::expected<ShareableContent, PlatformError>>
    shareableContent(DesktopWindows desktopWindows, WindowsListed windowsListed) override;
    std::shared_ptr<CaptureStream> makeStream(ContentFilter filter,
                                              StreamConfiguration configuration,
                                              StopHandler stopped) override;
    Task<std::expected<StillImage, PlatformError>>
    captureImage(ContentFilter filter, StreamConfiguration configuration) override;

    /// From now on `operation` waits for `release`.
    void hold(const std::string& operation) { m_held.insert(operation); }
    /// Answers the oldest call of `operation` that waits; later ones are held still.
    void releaseOne(const std::string& operation);
    void release(const std::string& operation);
    /// From now on `operation` fails.
    void fail(const std::string& operation, PlatformError error) {
        m_failures.insert_or_assign(operation, std::move(error));
    }
    void succeed(const std::string& operation) { m_failures.erase(operation); }

    [[nodiscard]] StreamRecord& stream(std::size_t number) const { return *streams.at(number - 1); }
    [[nodiscard]] int capturingStreams() const;

    ShareableContent content;
    std::vector<std::shared_ptr<StreamRecord>> streams;

private:
    class Stream;
    [[nodiscard]] Answer answer(const std::string& operation) const;
    Task<Answer> ask(std::string operation, std::string logged);

    MainLoop& m_loop;
    CallLog& m_calls;
    std::set<std::string> m_held;
    std::map<std::string, std::vector<Completion<bool>>> m_waiting;
    std::map<std::string, PlatformError> m_failures;
};

class ScriptedCaptureService::Stream final : public CaptureStream {
public:
    Stream(ScriptedCaptureService& capture, std::shared_ptr<StreamRecord> record)
        : m_capture(capture)
        , m_record(std::move(record)) {}
    ~Stream() override { m_record->isDestroyed = true; }

    Answer addScreenOutput(std::shared_ptr<SerialQueue> queue, SampleHandler handler) override {
        m_capture.m_calls.add("output " + queue->label());
        m_record->queue = std::move(queue);
        m_record->handler = std::move(handler);
        return m_capture.answer("output");
    }
    Task<Answer> startCapture() override { return run(m_capture, m_record, "start"); }
    Task<Answer> stopCapture() override { return run(m_capture, m_record, "stop"); }
    Task<Answer> updateContentFilter(ContentFilter filter) override {
        return update(m_capture, m_record, "filter", std::move(filter), std::nullopt);
    }
    Task<Answer> updateConfiguration(StreamConfiguration configuration) override {
        return update(m_capture, m_record, "configuration", std::nullopt, std::move(configuration));
    }

private:
    using Record = std::shared_ptr<StreamRecord>;

    static Task<Answer> run(ScriptedCaptureService& capture, Record record, std::string operation);
    static Task<Answer> update(ScriptedCaptureService& capture, Record record,
                               std::string operation, std::optional<ContentFilter> filter,
                               std::optional<StreamConfiguration> configuration);

    ScriptedCaptureService& m_capture;
    Record m_record;
};

inline Task<std::expected<ShareableContent, PlatformError>>
ScriptedCaptureService::shareableContent(DesktopWindows desktopWindows,
                                         WindowsListed windowsListed) {
    std::string logged = "content";
    logged += desktopWindows == DesktopWindows::included ? " desktop" : " no-desktop";
    logged += windowsListed == WindowsListed::all ? " all" : " on-screen";
    auto asked = co_await ask("content", logged);
    if (!asked)
        co_return std::unexpected(asked.error());
    co_return content;
}

inline std::shared_ptr<CaptureStream>
ScriptedCaptureService::makeStream(ContentFilter filter, StreamConfiguration configuration,
                                   StopHandler stopped) {
    const int number = static_cast<int>(streams.size()) + 1;
    m_calls.add("make " + std::to_string(number));
    streams.push_back(std::make_shared<StreamRecord>(number, std::move(filter),
                                                     std::move(configuration), std::move(stopped)));
    return std::make_shared<Stream>(*this, streams.back());
}

inline Task<std::expected<StillImage, PlatformError>>
ScriptedCaptureService::captureImage(ContentFilter, StreamConfiguration) {
    auto asked = co_await ask("image", "image");
    if (!asked)
        co_return std::unexpected(asked.error());
    co_return StillImage();
}

inline Task<ScriptedCaptureService::Answer>
ScriptedCaptureService::Stream::run(ScriptedCaptureService& capture, Record record,
                                    std::string operation) {
    const bool isStart = operation == "start";
    auto answer = co_await capture.ask(operation, operation + " " + std::to_string(record->number));
    if (answer)
        (isStart ? record->isStarted : record->isStopped) = true;
    co_return answer;
}

inline Task<ScriptedCaptureService::Answer>
ScriptedCaptureService::Stream::update(ScriptedCaptureService& capture, Record record,
                                       std::string operation, std::optional<ContentFilter> filter,
                                       std::optional<StreamConfiguration> configuration) {
    auto answer = co_await capture.ask(operation, operation + " " + std::to_string(record->number));
    if (answer && filter)
        record->filter = *filter;
    if (answer && configuration)
        record->configuration = *configuration;
    co_return answer;
}

inline ScriptedCaptureService::Answer
ScriptedCaptureService::answer(const std::string& operation) const {
    const auto failure = m_failures.find(operation);
    if (failure == m_failures.end())
        return {};
    return std::unexpected(failure->second);
}

inline Task<ScriptedCaptureService::Answer> ScriptedCaptureService::ask(std::string operation,
                                                                        std::string logged) {
    m_calls.add(logged);
    const Completion<bool> released(m_loop);
    if (m_held.contains(operation))
        m_waiting[operation].push_back(released);
    else
        released.complete(true);
    co_await released;
    co_return answer(operation);
}

inline void ScriptedCaptureService::releaseOne(const std::string& operation) {
    auto& waiting = m_waiting[operation];
    const auto oldest = waiting.at(0);
    waiting.erase(waiting.begin());
    oldest.complete(true);
}

inline void ScriptedCaptureService::release(const std::string& operation) {
    m_held.erase(operation);
    for (const auto& each : std::exchange(m_waiting[operation], {}))
        each.complete(true);
}

inline int ScriptedCaptureService::capturingStreams() const {
    int count = 0;
    for (const auto& each : streams)
        count += each->isCapturing() ? 1 : 0;
    return count;
}

} // namespace kestrove

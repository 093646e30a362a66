#pragma once

#include "Async/MainLoop.h"
#include "Desktop/ScreenCapture.h"

#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace kestrove::contract {

/// Gathers what a stream sends and reports, on whatever threads it does so. Handed to the stream as
/// a shared object, because its handlers may run for a moment after the test let go of the stream.
class SampleCollector : public std::enable_shared_from_this<SampleCollector> {
public:
    explicit SampleCollector(MainLoop& loop)
        : m_loop(loop) {}

    [[nodiscard]] SampleHandler sampleHandler() {
        return [self = shared_from_this()](SampleBufferPointer sample) {
            const std::scoped_lock lock(self->m_mutex);
            self->m_wasEverOnMainThread |= self->m_loop.isMainThread();
            ++self->m_sampleCount;
            self->m_latest = std::move(sample);
        };
    }
    [[nodiscard]] StopHandler stopHandler() {
        return [self = shared_from_this()](const PlatformError& error) {
            const std::scoped_lock lock(self->m_mutex);
            self->m_stops.push_back(error);
        };
    }

    [[nodiscard]] int sampleCount() const {
        const std::scoped_lock lock(m_mutex);
        return m_sampleCount;
    }
    [[nodiscard]] std::vector<PlatformError> stops() const {
        const std::scoped_lock lock(m_mutex);
        return m_stops;
    }
    [[nodiscard]] bool wasEverOnMainThread() const {
        const std::scoped_lock lock(m_mutex);
        return m_wasEverOnMainThread;
    }
    /// Null before the first one. It is held until the next one comes.
    [[nodiscard]] SampleBufferPointer latest() const {
        const std::scoped_lock lock(m_mutex);
        return m_latest;
    }

private:
    MainLoop& m_loop;
    mutable std::mutex m_mutex;
    int m_sampleCount = 0;
    bool m_wasEverOnMainThread = false;
    SampleBufferPointer m_latest;
    std::vector<PlatformError> m_stops;
};

/// A stream with one output, not started yet.
class CollectedStream {
public:
    CollectedStream(MainLoop& loop, ScreenCapture& capture, ContentFilter filter,
                    StreamConfiguration configuration)
        : collector(std::make_shared<SampleCollector>(loop))
        , stream(capture.makeStream(std::move(filter), configuration, collector->stopHandler())) {
        const auto added = stream->addScreenOutput(loop.makeSerialQueue("contract.samples"),
                                                   collector->sampleHandler());
        EXPECT_TRUE(added.has_value());
    }

    std::shared_ptr<SampleCollector> collector;
    std::shared_ptr<CaptureStream> stream;
};

} // namespace kestrove::contract

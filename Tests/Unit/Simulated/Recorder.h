#pragma once

#include "Async/TaskScope.h"
#include "Platform/Simulated/SimulatedPlatform.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace kestrove {

/// Awaits `task` and stores what it gave.
template <class Value>
Task<void> storeResult(Task<Value> task, std::optional<Value>* into) {
    into->emplace(co_await std::move(task));
}

/// Runs a task on the platform's loop until everything that is queued has run.
template <class Value>
std::optional<Value> runNow(SimulatedPlatform& platform, Task<Value> task) {
    std::optional<Value> result;
    TaskScope scope(platform.loop);
    scope.launch(storeResult(std::move(task), &result));
    platform.loop.runUntilIdle();
    return result;
}

inline StreamConfiguration configurationOf(std::int64_t width, std::int64_t height) {
    StreamConfiguration configuration;
    configuration.minimumFrameInterval = {1, 10};
    configuration.queueDepth = 3;
    configuration.width = width;
    configuration.height = height;
    return configuration;
}

/// A started stream that keeps the frames it was given, and lets go of the samples at once unless
/// told otherwise.
class RecordedStream {
public:
    RecordedStream(SimulatedPlatform& platform, ContentFilter filter,
                   StreamConfiguration configuration = configurationOf(144, 90))
        : m_queue(platform.loop.makeSerialQueue("test.samples"))
        , stream(platform.screenCapture.makeStream(std::move(filter), configuration,
                                                   [this, &platform](const PlatformError& error) {
                                                       EXPECT_FALSE(platform.loop.isMainThread());
                                                       stops.push_back(error);
                                                   })) {
        const auto added = stream->addScreenOutput(m_queue, [this, &platform](auto sample) {
            EXPECT_FALSE(platform.loop.isMainThread());
            const auto ours = std::dynamic_pointer_cast<const SimulatedSampleBuffer>(sample);
            frames.push_back(ours->frame());
            if (keepsSamples)
                samples.push_back(std::move(sample));
        });
        EXPECT_TRUE(added.has_value());
    }

    bool keepsSamples = false;
    std::vector<SimulatedFramePointer> frames;
    std::vector<SampleBufferPointer> samples;
    std::vector<PlatformError> stops;

private:
    std::shared_ptr<SerialQueue> m_queue;

public:
    std::shared_ptr<CaptureStream> stream;
};

} // namespace kestrove

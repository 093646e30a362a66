#pragma once

#include "Desktop/DisplayLayer.h"
#include "Platform/Simulated/SimulatedMainLoop.h"
#include "Platform/Simulated/SimulatedSampleBuffer.h"

#include <vector>

namespace kestrove {

class SimulatedDesktop;

/// A display layer that remembers what it has shown. It ends the process when it is given what no
/// layer can show: nothing, an invalid sample, sound, or a frame without a picture.
class SimulatedDisplayLayer final : public DisplayLayer {
public:
    explicit SimulatedDisplayLayer(SimulatedDesktop& desktop)
        : m_desktop(desktop) {}
    ~SimulatedDisplayLayer() override { setHost(0); }

    void setHost(NativeViewHandle host) override;
    void enqueue(SampleBufferPointer sample) override;
    void flush() override;
    DisplayLayerStatus status() const override { return m_status; }

    /// Shows nothing new until it is flushed.
    void fail();

    [[nodiscard]] NativeViewHandle host() const { return m_host; }
    /// What is seen now; null is black.
    [[nodiscard]] SimulatedFramePointer visible() const;
    /// What was seen at a moment, after everything that happened in it.
    [[nodiscard]] SimulatedFramePointer visibleAt(Seconds moment) const;

    struct Change {
        Seconds at{0};
        /// Null is black.
        SimulatedFramePointer frame;
    };
    /// Every change of what is seen, in order. Black to black is none.
    [[nodiscard]] const std::vector<Change>& changes() const { return m_changes; }
    [[nodiscard]] int enqueueCount() const { return m_enqueueCount; }
    [[nodiscard]] int flushCount() const { return m_flushCount; }

private:
    void show(SampleBufferPointer sample, SimulatedFramePointer frame);

    SimulatedDesktop& m_desktop;
    NativeViewHandle m_host = 0;
    DisplayLayerStatus m_status = DisplayLayerStatus::unknown;
    /// Held while it is seen, as a real layer holds the pixels that it shows.
    SampleBufferPointer m_sample;
    std::vector<Change> m_changes;
    int m_enqueueCount = 0;
    int m_flushCount = 0;
};

} // namespace kestrove

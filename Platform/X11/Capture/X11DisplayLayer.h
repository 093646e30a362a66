#pragma once

#include "Desktop/DisplayLayer.h"
#include "Platform/X11/Capture/FrameSample.h"
#include "Platform/X11/Capture/FrameScaler.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace kestrove::x11 {

/// The display layer as a window of ours inside the host window. Frames are drawn by the server
/// from their surface, only where they changed; the surface of the last frame is kept to draw again
/// what was uncovered or resized.
///
/// Thread: main.
class X11DisplayLayer final : public DisplayLayer {
public:
    explicit X11DisplayLayer(Connection& connection);

    void setHost(NativeViewHandle host) override;
    void enqueue(SampleBufferPointer sample) override;
    void flush() override;
    DisplayLayerStatus status() const override { return m_status; }

private:
    void createWindow();
    void destroyWindow();
    void resize(int width, int height);
    void prepareScaler();
    void drawAll();
    void clear();
    void onEvent(const xcb_generic_event_t& event);
    void onDrained();

    Connection& m_connection;
    std::unique_ptr<PictureFormats> m_formats;
    xcb_window_t m_host = XCB_NONE;
    Window m_window;
    Picture m_target;
    int m_width = 0;
    int m_height = 0;
    std::shared_ptr<FrameSurface> m_surface;
    std::unique_ptr<FrameScaler> m_scaler;
    Subscription m_scalerRefused;
    std::uint64_t m_lastNumber = 0;
    DisplayLayerStatus m_status = DisplayLayerStatus::unknown;
    Region m_exposed;
    /// The request before all of the window was drawn, until the server has told something after
    /// it: what was bared before has been drawn since.
    std::optional<std::uint32_t> m_wholeDrawing;
    /// The request that told the host's size, until the server has told something after it.
    std::optional<std::uint32_t> m_sizeAsked;
    Subscription m_events;
    Subscription m_drained;
    Subscription m_lost;
    Subscription m_opened;
};

} // namespace kestrove::x11

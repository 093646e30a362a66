#pragma once

#include "Platform/X11/Capture/CursorTracker.h"
#include "Platform/X11/Capture/PictureFormats.h"
#include "Platform/X11/Capture/WindowStack.h"
#include "Platform/X11/Capture/WindowsNeverCaptured.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/RawMotion.h"

#include <memory>
#include <xcb/xcb.h>

namespace kestrove::x11 {

/// What all captures share: made for the first stream, kept by the streams. It belongs to the
/// connection to the server that it was made on.
struct CaptureServices {
    CaptureServices(Connection& connection, RawMotion& motion,
                    WindowsNeverCaptured& windowsNeverCaptured)
        : formats(connection)
        , stack(connection)
        , cursor(connection, formats, motion)
        , neverCaptured(windowsNeverCaptured)
        , m_lifetime(connection.lifetime()) {}

    /// Whether that connection still is.
    [[nodiscard]] bool isCurrent() const { return !m_lifetime.expired(); }

    PictureFormats formats;
    WindowStack stack;
    CursorTracker cursor;
    /// Left out of every display, whatever its filter says.
    WindowsNeverCaptured& neverCaptured;
    /// Of somebody else who follows the stack; ends before it.
    Subscription following;

private:
    std::weak_ptr<const void> m_lifetime;
};

} // namespace kestrove::x11

#pragma once

#include "Platform/X11/Capture/CursorTracker.h"
#include "Platform/X11/Capture/PictureFormats.h"
#include "Platform/X11/Capture/WindowStack.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/RawMotion.h"

namespace kestrove::x11 {

/// What all captures share: made for the first stream, kept while the connection lives.
struct CaptureServices {
    CaptureServices(Connection& connection, RawMotion& motion)
        : formats(connection)
        , stack(connection)
        , cursor(connection, formats, motion) {}

    PictureFormats formats;
    WindowStack stack;
    CursorTracker cursor;
};

} // namespace kestrove::x11

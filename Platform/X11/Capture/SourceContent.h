#pragma once

#include "Async/Signal.h"
#include "Desktop/PlatformError.h"
#include "Platform/X11/Capture/FramePainter.h"
#include "Platform/X11/Capture/Region.h"

#include <optional>

namespace kestrove::x11 {

/// What a stream captures, apart from the cursor: a display without some windows, or a window. It
/// gathers which of its pixels have changed and paints them when asked.
///
/// Coordinates: pixels of the source, origin at its top left. Thread: main.
class SourceContent {
public:
    SourceContent() = default;
    SourceContent(const SourceContent&) = delete;
    SourceContent& operator=(const SourceContent&) = delete;
    virtual ~SourceContent() = default;

    struct Extent {
        int width = 0;
        int height = 0;
        bool operator==(const Extent&) const = default;
    };

    [[nodiscard]] virtual Extent extent() const = 0;

    /// The display moved or changed its size: its pixels on the root. Nothing to a window.
    virtual void setArea(xcb_rectangle_t area) = 0;

    /// Where the source's top left lies on the root window; absent while the source cannot be seen
    /// there, so that a pointer is not over it.
    struct Place {
        int x = 0;
        int y = 0;
    };
    [[nodiscard]] virtual std::optional<Place>
    placeUnderPointer(xcb_window_t topLevelUnderPointer) = 0;

    /// What has changed since the last `takeDamage`, and accepts it: later changes are told anew.
    [[nodiscard]] virtual Region takeDamage() = 0;
    [[nodiscard]] virtual bool hasDamage() const = 0;

    /// Sets the picture's clip. Regions are within the extent.
    virtual void paint(const PaintTarget& target, const Region& region) = 0;
    /// The part of `region` that one opaque draw paints.
    [[nodiscard]] virtual Region paintedAtOnce(const Region& region) const = 0;

    /// What is painted up to now is about to be something else, of another size perhaps: the last
    /// moment to paint it.
    Signal<> aboutToChange;
    /// There is damage, or the extent is another. Told once for all that had arrived.
    Signal<> changed;
    /// The source has gone for good.
    Signal<PlatformError> gone;
};

} // namespace kestrove::x11

#pragma once

#include "Async/Subscription.h"
#include "Desktop/Geometry.h"
#include "Desktop/Identifiers.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kestrove {

struct Screen {
    /// Points, screen coordinates.
    Rect frame;
    /// The frame without panels and docks. Points, screen coordinates.
    Rect visibleFrame;
    /// Absent when the desktop has no number for the screen.
    std::optional<DisplayID> displayID;
    std::string localizedName;
    /// Pixels a point.
    double backingScaleFactor = 1;
    bool isMain = false;

    bool operator==(const Screen&) const = default;
};

/// The desktop's screens.
///
/// Thread: main. The callback comes from the main loop.
class Screens {
public:
    Screens() = default;
    Screens(const Screens&) = delete;
    Screens& operator=(const Screens&) = delete;
    virtual ~Screens() = default;

    /// In the desktop's own order; at most one of them is the main one. Empty when there is none.
    [[nodiscard]] virtual std::vector<Screen> screens() = 0;

    /// A screen came, went, moved, or changed its size, scale or usable area.
    [[nodiscard]] virtual Subscription onChanged(std::function<void()> callback) = 0;
};

} // namespace kestrove

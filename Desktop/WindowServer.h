#pragma once

#include "Desktop/Geometry.h"
#include "Desktop/Identifiers.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace kestrove {

/// Which windows to list; options are joined with `|`.
enum class WindowListOptions : std::uint32_t {
    all = 0,
    onScreenOnly = 1,
    excludeDesktopElements = 16,
};

[[nodiscard]] constexpr WindowListOptions operator|(WindowListOptions a, WindowListOptions b) {
    return static_cast<WindowListOptions>(static_cast<std::uint32_t>(a) |
                                          static_cast<std::uint32_t>(b));
}

[[nodiscard]] constexpr bool has(WindowListOptions options, WindowListOptions option) {
    return (static_cast<std::uint32_t>(options) & static_cast<std::uint32_t>(option)) != 0;
}

/// One row of the window list. A field is absent where the desktop does not say.
struct WindowDescription {
    std::optional<WindowID> windowNumber;
    std::optional<ProcessID> ownerProcessID;
    std::optional<int> layer;
    /// 0 (transparent) to 1 (opaque).
    std::optional<double> alpha;
    /// Points, window server coordinates.
    std::optional<Rect> bounds;

    bool operator==(const WindowDescription&) const = default;
};

/// The desktop's window list.
///
/// Thread: main. Synchronous.
class WindowServer {
public:
    WindowServer() = default;
    WindowServer(const WindowServer&) = delete;
    WindowServer& operator=(const WindowServer&) = delete;
    virtual ~WindowServer() = default;

    /// Front to back. Absent when the list cannot be read.
    [[nodiscard]] virtual std::optional<std::vector<WindowDescription>>
    windowList(WindowListOptions options) = 0;
};

} // namespace kestrove

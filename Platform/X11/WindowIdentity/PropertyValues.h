#pragma once

#include "Desktop/Geometry.h"
#include "Desktop/Identifiers.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace kestrove::x11 {

/// What other programs wrote into the properties of their windows means. They may have written
/// anything: whatever cannot be meant is absent, and every text is valid UTF-8. Thread: any.

/// Of _NET_WM_PID, when WM_CLIENT_MACHINE is this machine: elsewhere the number means another
/// process or none.
[[nodiscard]] std::optional<ProcessID> processOf(std::optional<std::uint32_t> number,
                                                 const std::optional<std::string>& machine,
                                                 std::string_view thisMachine);

/// The second of the two texts that WM_CLASS holds, each closed by a zero.
[[nodiscard]] std::optional<std::string> classOf(const std::string& bytes);

/// An application id as it is, a desktop file without folder and ".desktop".
[[nodiscard]] std::optional<std::string> applicationOf(std::string_view bytes);

/// A window without the shadow that it draws itself: `extents` is _GTK_FRAME_EXTENTS (left, right,
/// top, bottom). What leaves nothing of the window is not believed.
[[nodiscard]] Rect withoutShadow(const Rect& window, std::span<const std::uint32_t> extents);

} // namespace kestrove::x11

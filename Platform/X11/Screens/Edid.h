#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace kestrove::x11 {

/// The display's name out of its EDID (the descriptor of type 0xFC in the base block), printable
/// ASCII without the padding; absent when there is none or the block is not an EDID.
[[nodiscard]] std::optional<std::string> edidDisplayName(std::span<const std::uint8_t> edid);

} // namespace kestrove::x11

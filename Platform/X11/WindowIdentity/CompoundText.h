#pragma once

#include <string>
#include <string_view>

namespace kestrove::x11 {

/// Compound text, in which programs older than UTF-8 write their titles: several character sets,
/// announced by escape sequences. As UTF-8 that is certainly valid. Known are the sets of Western,
/// Central and Eastern Europe, Greek, Arabic and Hebrew, Japanese, Chinese (simplified) and Korean,
/// and UTF-8 itself; a character of another one becomes U+FFFD.
[[nodiscard]] std::string textOfCompound(std::string_view bytes);

} // namespace kestrove::x11

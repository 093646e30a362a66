#pragma once

#include <string>
#include <string_view>

namespace kestrove::x11 {

/// Text that other programs wrote into a property, as UTF-8 that is certainly valid: what is not
/// becomes U+FFFD, control characters become spaces, zeros at the end go. Settings and lists must
/// never stumble over another program's title.

[[nodiscard]] std::string textOfUtf8(std::string_view bytes);

/// ISO 8859-1, which is what the property type STRING means.
[[nodiscard]] std::string textOfLatin1(std::string_view bytes);

} // namespace kestrove::x11

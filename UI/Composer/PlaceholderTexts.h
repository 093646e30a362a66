#pragma once

#include <string_view>

/// What the output window says while nothing is shared.
namespace kestrove::PlaceholderTexts {

inline constexpr std::string_view label = "現在、画面は共有されていません\n"
                                          "メニューバーからソースを選択または再試行してください";

/// Points, of the system's own font.
inline constexpr double fontSize = 14;
inline constexpr int maximumNumberOfLines = 2;

} // namespace kestrove::PlaceholderTexts

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// How stored values are written as text, so that a person can read and edit them and that every
/// value comes back as it was, with its type:
///
///  | A value that is written                  | is                                            |
///  |------------------------------------------|-----------------------------------------------|
///  | `true` or `false`                        | a boolean                                     |
///  | digits, with or without a leading `-`    | an integer (64 bits, signed)                  |
///  | something that begins with `[` or `{`    | data: these very bytes (JSON)                 |
///  | `hex:` and pairs of hexadecimal digits   | data: any other bytes                         |
///  | something between `"` and `"`            | text with `\"`, `\\`, `\n`, `\r`, `\t`, `\0`  |
///  | anything else                            | text, as it stands                            |
///
/// Spaces and tabs around a value are not part of it.
namespace kestrove::DefaultsText {

using Data = std::vector<std::uint8_t>;
using Value = std::variant<std::string, std::int64_t, bool, Data>;

/// One line's worth of text, which `parse` turns into an equal value.
[[nodiscard]] std::string format(const Value& value);

/// Absent when it is none of the above (a number that is too large, half a pair of digits, a quote
/// that is not closed).
[[nodiscard]] std::optional<Value> parse(std::string_view text);

/// Without the spaces, tabs and carriage returns at both ends.
[[nodiscard]] std::string_view trimmed(std::string_view text);

} // namespace kestrove::DefaultsText

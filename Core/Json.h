#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <vector>

namespace kestrove {

/// JSON whose objects keep the order in which their keys were written.
using Json = nlohmann::ordered_json;

/// Absent when the bytes are not one whole UTF-8 JSON text. Never throws.
[[nodiscard]] std::optional<Json> parseJson(const std::vector<std::uint8_t>& bytes);

/// UTF-8 without spaces; absent when a text in `json` is not UTF-8. Never throws.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> serializeJson(const Json& json);

} // namespace kestrove

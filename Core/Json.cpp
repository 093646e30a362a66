#include "Core/Json.h"

#include <string>

namespace kestrove {

std::optional<Json> parseJson(const std::vector<std::uint8_t>& bytes) {
    constexpr bool allowExceptions = false;
    auto json = Json::parse(bytes, nullptr, allowExceptions);
    return json.is_discarded() ? std::nullopt : std::optional(std::move(json));
}

std::optional<std::vector<std::uint8_t>> serializeJson(const Json& json) {
    // The strict handler would throw. What is not UTF-8 comes out differently from the other two.
    const auto text = json.dump(-1, ' ', false, Json::error_handler_t::replace);
    if (text != json.dump(-1, ' ', false, Json::error_handler_t::ignore))
        return std::nullopt;
    return std::vector<std::uint8_t>(text.begin(), text.end());
}

} // namespace kestrove

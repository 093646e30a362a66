#include "Core/JsonDecoding.h"

#include <fmt/format.h>

namespace kestrove {

std::unexpected<DecodingError> typeMismatch(std::string description) {
    return std::unexpected(
        DecodingError(DecodingError::Kind::typeMismatch, std::move(description)));
}

std::expected<const Json*, DecodingError> decodeMember(const Json& object, const char* key) {
    if (!object.is_object())
        return typeMismatch("Expected an object.");
    const auto found = object.find(key);
    if (found == object.end()) {
        return std::unexpected(DecodingError(DecodingError::Kind::keyNotFound,
                                             fmt::format("No value for the key \"{}\".", key)));
    }
    return &*found;
}

std::expected<std::string, DecodingError> decodeText(const Json& object, const char* key) {
    const auto value = decodeMember(object, key);
    if (!value)
        return std::unexpected(value.error());
    const auto* const string = (*value)->get_ptr<const Json::string_t*>();
    if (string == nullptr)
        return typeMismatch(fmt::format("Expected a text for the key \"{}\".", key));
    return *string;
}

DecodingError detail::numberDoesNotFit(const char* key) {
    return {DecodingError::Kind::dataCorrupted,
            fmt::format("The number for the key \"{}\" does not fit.", key)};
}

DecodingError detail::notAnInteger(const char* key) {
    return {DecodingError::Kind::typeMismatch,
            fmt::format("Expected an integer for the key \"{}\".", key)};
}

} // namespace kestrove

#pragma once

#include "Core/Json.h"

#include <concepts>
#include <cstdint>
#include <expected>
#include <string>
#include <utility>

namespace kestrove {

// How stored values are decoded: keys that are not known are ignored; a key that is missing, a
// value of a wrong type and a number out of range fail the whole value. No default is ever put in.
// Thread: any.

/// Why a value could not be decoded.
struct DecodingError {
    enum class Kind {
        typeMismatch,
        keyNotFound,
        /// A number that does not fit.
        dataCorrupted,
    };

    DecodingError(Kind errorKind, std::string whatIsWrong)
        : kind(errorKind)
        , description(std::move(whatIsWrong)) {}

    Kind kind;
    std::string description;

    bool operator==(const DecodingError&) const = default;
};

[[nodiscard]] std::unexpected<DecodingError> typeMismatch(std::string description);

/// The value under `key`, which lives as long as `object`.
[[nodiscard]] std::expected<const Json*, DecodingError> decodeMember(const Json& object,
                                                                     const char* key);

[[nodiscard]] std::expected<std::string, DecodingError> decodeText(const Json& object,
                                                                   const char* key);

namespace detail {
[[nodiscard]] DecodingError numberDoesNotFit(const char* key);
[[nodiscard]] DecodingError notAnInteger(const char* key);
} // namespace detail

template <std::integral Number>
[[nodiscard]] std::expected<Number, DecodingError> decodeNumber(const Json& object,
                                                                const char* key) {
    const auto value = decodeMember(object, key);
    if (!value)
        return std::unexpected(value.error());
    const Json& json = **value;
    if (!json.is_number_integer())
        return std::unexpected(detail::notAnInteger(key));
    // What is parsed without a sign is stored unsigned, and may be beyond the signed range.
    const bool fits = json.is_number_unsigned()
                          ? std::in_range<Number>(*json.get_ptr<const Json::number_unsigned_t*>())
                          : std::in_range<Number>(*json.get_ptr<const Json::number_integer_t*>());
    if (!fits)
        return std::unexpected(detail::numberDoesNotFit(key));
    return json.get<Number>();
}

} // namespace kestrove

#pragma once

#include "Core/Json.h"
#include "Core/JsonDecoding.h"
#include "Tests/Fuzzing/Promise.h"

#include <expected>

namespace kestrove::fuzzing {

/// What decodes is the same after it was encoded, written and read again.
template <class Value>
void comesBack(const Json& json, std::expected<Value, DecodingError> (*decode)(const Json&)) {
    const auto value = decode(json);
    if (!value)
        return;
    const auto written = serializeJson(encode(*value));
    promise(written.has_value(), "what was decoded can be written");
    const auto read = parseJson(*written);
    promise(read.has_value(), "what was written can be read");
    promise(decode(*read) == value, "what was read is what was written");
}

} // namespace kestrove::fuzzing

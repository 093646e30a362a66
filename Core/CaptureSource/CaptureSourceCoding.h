#pragma once

#include "Core/CaptureSource/CaptureSource.h"
#include "Core/Json.h"

#include <expected>
#include <string>

namespace kestrove {

// The stored form of sources and selections. It is part of the settings' format and does not
// change. Thread: any.
//
//   display 5    {"display":{"_0":5}}
//   window 7     {"window":{"_0":7}}
//   owner        {"processID":1,"bundleIdentifier":"org.example.editor"}
//   selection    {"windowID":7,"owner":{...}}
//
// When decoding, keys that are not known are ignored; a key that is missing, a value of a wrong
// type and a number out of 32-bit range fail the whole value. No default is ever put in.

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

[[nodiscard]] Json encode(const CaptureSource& source);
[[nodiscard]] Json encode(const WindowOwnerIdentity& owner);
[[nodiscard]] Json encode(const ManualWindowSelection& selection);

/// An object with none or with both of the two known keys is a type mismatch.
[[nodiscard]] std::expected<CaptureSource, DecodingError> decodeCaptureSource(const Json& json);
[[nodiscard]] std::expected<WindowOwnerIdentity, DecodingError>
decodeWindowOwnerIdentity(const Json& json);
[[nodiscard]] std::expected<ManualWindowSelection, DecodingError>
decodeManualWindowSelection(const Json& json);

} // namespace kestrove

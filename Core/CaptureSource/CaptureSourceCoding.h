#pragma once

#include "Core/CaptureSource/CaptureSource.h"
#include "Core/JsonDecoding.h"

#include <expected>

namespace kestrove {

// The stored form of sources and selections. It is part of the settings' format and does not
// change. Thread: any.
//
//   display 5    {"display":{"_0":5}}
//   window 7     {"window":{"_0":7}}
//   owner        {"processID":1,"bundleIdentifier":"org.example.editor"}
//   selection    {"windowID":7,"owner":{...}}
//
// How strictly it is decoded stands in Core/JsonDecoding.h.

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

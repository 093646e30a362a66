#pragma once

#include "Core/GlobalShortcuts/ShortcutAction.h"
#include "Core/JsonDecoding.h"

#include <expected>

namespace kestrove {

// The stored form of shortcut bindings. It is part of the settings' format and does not change.
// Thread: any.
//
//   binding    {"keyCode":1,"modifiers":4352,"characters":"S"}
//   bindings   {"startStop":{...},"showPicker":{...},"showWindow":{...},"hideToggle":{...}}
//
// How strictly it is decoded stands in Core/JsonDecoding.h. Whether a binding is valid or unique is
// not asked here: whoever installs it finds out.

[[nodiscard]] Json encode(const ShortcutBinding& binding);
[[nodiscard]] std::expected<ShortcutBinding, DecodingError> decodeShortcutBinding(const Json& json);

[[nodiscard]] Json encode(const ShortcutBindings& bindings);
/// Keys that name no action are left out, but their values must be bindings all the same.
[[nodiscard]] std::expected<ShortcutBindings, DecodingError>
decodeShortcutBindings(const Json& json);

} // namespace kestrove

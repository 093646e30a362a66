#pragma once

#include <string>
#include <string_view>

namespace kestrove {

struct ShortcutBinding;

// What the recorder tells those who cannot see it.

/// "ACTIONのショートカット".
[[nodiscard]] std::string recorderLabel(std::string_view actionName);
/// "入力中", or the binding and the row's status.
[[nodiscard]] std::string recorderValue(bool isRecording, const ShortcutBinding& binding,
                                        std::string_view status);
inline constexpr std::string_view recorderHint =
    "SpaceまたはReturnで入力を開始し、Escapeで取り消します";

} // namespace kestrove

#include "UI/ShortcutRecorder/RecorderAccessibility.h"

#include "Core/GlobalShortcuts/ShortcutBinding.h"

namespace kestrove {

std::string recorderLabel(std::string_view actionName) {
    return std::string(actionName) + "のショートカット";
}

std::string recorderValue(bool isRecording, const ShortcutBinding& binding,
                          std::string_view status) {
    return isRecording ? "入力中" : binding.display() + "、" + std::string(status);
}

} // namespace kestrove

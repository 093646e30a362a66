#include "UI/ShortcutRecorder/RecorderLogic.h"

#include <utility>

namespace kestrove {

void RecorderLogic::setCurrentBinding(ShortcutBinding binding) {
    m_currentBinding = std::move(binding);
    m_host.redraw();
}

RecorderAppearance RecorderLogic::appearance() const {
    if (m_isRecording)
        return {true, "キーを押す…"};
    const bool isSet = m_currentBinding && m_currentBinding->isValid();
    return {false, isSet ? m_currentBinding->display() : "未設定"};
}

KeyPressOutcome RecorderLogic::keyDown(const RecorderKeyPress& press) {
    if (!m_isRecording)
        return keyDownWhileIdle(press);
    keyDownWhileRecording(press);
    return KeyPressOutcome::handled;
}

KeyPressOutcome RecorderLogic::keyDownWhileIdle(const RecorderKeyPress& press) {
    switch (press.keyCode) {
    case KeyCode::space:
    case KeyCode::returnKey:
        startRecording();
        return KeyPressOutcome::handled;
    case KeyCode::tab:
        if ((press.modifierFlags & EventModifierFlag::shift) != 0)
            m_host.selectPreviousKeyView();
        else
            m_host.selectNextKeyView();
        return KeyPressOutcome::handled;
    default:
        return KeyPressOutcome::passedOn;
    }
}

void RecorderLogic::keyDownWhileRecording(const RecorderKeyPress& press) {
    if (press.keyCode == KeyCode::escape) {
        endRecording();
        return;
    }
    const ShortcutBinding binding{
        press.keyCode, ShortcutBinding::carbonModifiers(press.modifierFlags), press.characters};
    // A bare letter would be taken from all other programs.
    if (!binding.isValid())
        return;
    if (onCapture)
        onCapture(binding);
    endRecording();
}

void RecorderLogic::mouseDown() {
    if (m_isRecording)
        endRecording();
    else
        startRecording();
}

void RecorderLogic::resignFirstResponder() {
    setRecording(false);
}

void RecorderLogic::accessibilityPerformPress() {
    startRecording();
}

void RecorderLogic::startRecording() {
    m_host.becomeFirstResponder();
    setRecording(true);
}

void RecorderLogic::endRecording() {
    setRecording(false);
    m_host.clearFirstResponder();
}

void RecorderLogic::setRecording(bool isRecording) {
    if (std::exchange(m_isRecording, isRecording) == isRecording)
        return;
    m_host.redraw();
    if (onRecordingChange)
        onRecordingChange(isRecording);
}

} // namespace kestrove

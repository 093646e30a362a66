#pragma once

#include "Core/GlobalShortcuts/ShortcutBinding.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace kestrove {

/// A key press as the recorder judges it.
struct RecorderKeyPress {
    std::uint32_t keyCode = 0;
    /// `EventModifierFlag` bits.
    std::uint32_t modifierFlags = 0;
    /// What the key types without modifiers; empty when nothing.
    std::string characters;
};

/// What the recorder asks of the view around it.
class RecorderHost {
public:
    RecorderHost() = default;
    RecorderHost(const RecorderHost&) = delete;
    RecorderHost& operator=(const RecorderHost&) = delete;
    virtual ~RecorderHost() = default;

    virtual void becomeFirstResponder() = 0;
    /// Takes the keyboard focus away; nothing else gets it.
    virtual void clearFirstResponder() = 0;
    virtual void selectNextKeyView() = 0;
    virtual void selectPreviousKeyView() = 0;
    virtual void redraw() = 0;
};

/// How the recorder looks now.
struct RecorderAppearance {
    bool isRecording = false;
    /// UTF-8.
    std::string text;

    bool operator==(const RecorderAppearance&) const = default;
};

/// Whether a press was dealt with, or is for whoever else wants keys.
enum class KeyPressOutcome : std::uint8_t { handled, passedOn };

/// The recorder's key-press state machine and what it shows, without any toolkit.
///
/// Thread: main.
class RecorderLogic {
public:
    explicit RecorderLogic(RecorderHost& host)
        : m_host(host) {}

    /// What is shown while it does not record.
    void setCurrentBinding(ShortcutBinding binding);
    [[nodiscard]] const std::optional<ShortcutBinding>& currentBinding() const {
        return m_currentBinding;
    }

    /// Told once of each binding that was recorded.
    std::function<void(const ShortcutBinding&)> onCapture;
    /// Told of each change of `isRecording`.
    std::function<void(bool)> onRecordingChange;

    [[nodiscard]] bool isRecording() const { return m_isRecording; }
    [[nodiscard]] RecorderAppearance appearance() const;

    [[nodiscard]] KeyPressOutcome keyDown(const RecorderKeyPress& press);
    /// A click starts recording, or ends it.
    void mouseDown();
    /// The keyboard focus goes elsewhere: that cancels.
    void resignFirstResponder();
    void accessibilityPerformPress();

private:
    [[nodiscard]] KeyPressOutcome keyDownWhileIdle(const RecorderKeyPress& press);
    void keyDownWhileRecording(const RecorderKeyPress& press);
    void startRecording();
    void endRecording();
    void setRecording(bool isRecording);

    RecorderHost& m_host;
    std::optional<ShortcutBinding> m_currentBinding;
    bool m_isRecording = false;
};

} // namespace kestrove

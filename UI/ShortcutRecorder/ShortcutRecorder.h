#pragma once

#include "UI/ShortcutRecorder/RecorderLogic.h"

#include <QString>
#include <QWidget>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace kestrove {

/// What a recorder asks of the keyboard and of the desktop's screen readers.
struct RecorderKeyboard {
    /// The key code of a native scan code; absent for modifiers and for keys that cannot be hot
    /// keys.
    std::function<std::optional<std::uint32_t>(std::uint32_t scanCode)> keyCode;
    /// What the key types without modifiers, UTF-8.
    std::function<std::string(std::uint32_t keyCode)> characters;
    /// Reads a message out at once, wherever the focus is.
    std::function<void(const QString& message)> announce;
};

/// The field of a settings row that shows a shortcut and records another one: 140 by 26 points.
///
/// While it records it has the whole keyboard, so that combinations which the window manager or our
/// own hot keys have are recorded too.
///
/// Thread: main.
class ShortcutRecorder final : public QWidget, private RecorderHost {
public:
    ShortcutRecorder(QString actionName, RecorderKeyboard keyboard, QWidget* parent = nullptr);
    ~ShortcutRecorder() override;

    /// The binding and the row's status text. A change of either is announced.
    void update(const ShortcutBinding& binding, const QString& status);
    void setOnCapture(std::function<void(const ShortcutBinding&)> onCapture);

    [[nodiscard]] const RecorderLogic& logic() const { return m_logic; }
    [[nodiscard]] QString accessibleValue() const;
    /// What a press by assistive technology does.
    void performPress() { m_logic.accessibilityPerformPress(); }

    using QWidget::update;

protected:
    bool event(QEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] bool keyDown(const QKeyEvent& event);
    void recordingChanged(bool isRecording);
    void giveKeyboardBack();

    void becomeFirstResponder() override;
    void clearFirstResponder() override;
    void selectNextKeyView() override;
    void selectPreviousKeyView() override;
    void redraw() override;

    RecorderKeyboard m_keyboard;
    RecorderLogic m_logic;
    QString m_status;
    bool m_hasKeyboard = false;
    /// The key that was recorded, as long as it is held: its repetitions are not for our hot keys.
    std::optional<std::uint32_t> m_heldScanCode;
};

} // namespace kestrove

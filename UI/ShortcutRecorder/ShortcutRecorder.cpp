#include "UI/ShortcutRecorder/ShortcutRecorder.h"

#include "UI/ShortcutRecorder/AccessibleRecorder.h"
#include "UI/ShortcutRecorder/RecorderAccessibility.h"
#include "UI/ShortcutRecorder/RecorderDrawing.h"

#include <QKeyEvent>
#include <QPainter>

#include <array>
#include <utility>

namespace kestrove {

namespace {

std::uint32_t modifierFlags(Qt::KeyboardModifiers modifiers) {
    constexpr std::array<std::pair<Qt::KeyboardModifier, std::uint32_t>, 4> pairs{{
        {Qt::ShiftModifier, EventModifierFlag::shift},
        {Qt::ControlModifier, EventModifierFlag::control},
        {Qt::AltModifier, EventModifierFlag::option},
        {Qt::MetaModifier, EventModifierFlag::command},
    }};
    std::uint32_t flags = 0;
    for (const auto& [modifier, flag] : pairs) {
        if (modifiers.testFlag(modifier))
            flags |= flag;
    }
    return flags;
}

QString text(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

} // namespace

ShortcutRecorder::ShortcutRecorder(QString actionName, RecorderKeyboard keyboard, QWidget* parent)
    : QWidget(parent)
    , m_keyboard(std::move(keyboard))
    , m_logic(*this) {
    installRecorderAccessibility();
    setFocusPolicy(Qt::StrongFocus);
    setFixedSize(RecorderDrawing::size(*this));
    setAccessibleName(text(recorderLabel(actionName.toStdString())));
    m_logic.onRecordingChange = [this](bool isRecording) { recordingChanged(isRecording); };
}

ShortcutRecorder::~ShortcutRecorder() {
    m_logic.onRecordingChange = nullptr;
    giveKeyboardBack();
}

void ShortcutRecorder::update(const ShortcutBinding& binding, const QString& status) {
    const bool hasChanged =
        m_logic.currentBinding() && (*m_logic.currentBinding() != binding || m_status != status);
    m_status = status;
    m_logic.setCurrentBinding(binding);
    setAccessibleDescription(accessibleValue() + "。" + text(recorderHint));
    if (hasChanged)
        m_keyboard.announce(status);
}

void ShortcutRecorder::setOnCapture(std::function<void(const ShortcutBinding&)> onCapture) {
    m_logic.onCapture = std::move(onCapture);
}

QString ShortcutRecorder::accessibleValue() const {
    const auto binding = m_logic.currentBinding().value_or(ShortcutBinding());
    return text(recorderValue(m_logic.isRecording(), binding, m_status.toStdString()));
}

bool ShortcutRecorder::event(QEvent* event) {
    // Before Qt makes focus changes and shortcuts of keys.
    if (event->type() == QEvent::ShortcutOverride && m_logic.isRecording()) {
        event->accept();
        return true;
    }
    if (event->type() == QEvent::KeyPress && keyDown(static_cast<const QKeyEvent&>(*event))) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

bool ShortcutRecorder::keyDown(const QKeyEvent& event) {
    if (m_heldScanCode == event.nativeScanCode())
        return true;
    const auto keyCode = m_keyboard.keyCode(event.nativeScanCode());
    // A modifier alone is no press.
    if (!keyCode)
        return m_logic.isRecording();
    const bool wasRecording = m_logic.isRecording();
    if (wasRecording)
        m_heldScanCode = event.nativeScanCode();
    const RecorderKeyPress press{*keyCode, modifierFlags(event.modifiers()),
                                 wasRecording ? m_keyboard.characters(*keyCode) : std::string()};
    const auto outcome = m_logic.keyDown(press);
    if (m_logic.isRecording())
        m_heldScanCode.reset();
    return outcome == KeyPressOutcome::handled;
}

void ShortcutRecorder::keyReleaseEvent(QKeyEvent* event) {
    if (m_heldScanCode == event->nativeScanCode() && !event->isAutoRepeat()) {
        m_heldScanCode.reset();
        giveKeyboardBack();
    }
    event->accept();
}

void ShortcutRecorder::mousePressEvent(QMouseEvent* /*event*/) {
    m_logic.mouseDown();
}

void ShortcutRecorder::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    update();
}

void ShortcutRecorder::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    m_logic.resignFirstResponder();
    update();
}

void ShortcutRecorder::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    m_logic.resignFirstResponder();
    m_heldScanCode.reset();
    giveKeyboardBack();
}

void ShortcutRecorder::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    RecorderDrawing::draw(painter, *this, m_logic.appearance());
}

void ShortcutRecorder::recordingChanged(bool isRecording) {
    setAccessibleDescription(accessibleValue() + "。" + text(recorderHint));
    if (isRecording) {
        grabKeyboard();
        m_hasKeyboard = true;
    } else if (!m_heldScanCode) {
        giveKeyboardBack();
    }
}

void ShortcutRecorder::giveKeyboardBack() {
    if (std::exchange(m_hasKeyboard, false))
        releaseKeyboard();
}

void ShortcutRecorder::becomeFirstResponder() {
    window()->activateWindow();
    setFocus(Qt::OtherFocusReason);
}

void ShortcutRecorder::clearFirstResponder() {
    clearFocus();
}

void ShortcutRecorder::selectNextKeyView() {
    focusNextChild();
}

void ShortcutRecorder::selectPreviousKeyView() {
    focusPreviousChild();
}

void ShortcutRecorder::redraw() {
    update();
}

} // namespace kestrove

#include "UI/SettingsView/FrameRateStepper.h"

#include "UI/SettingsView/FrameRateSteps.h"

#include <QAccessible>
#include <QAccessibleValueChangeEvent>
#include <QLineEdit>
#include <QStyle>
#include <QStyleOptionSpinBox>

#include <algorithm>
#include <limits>

namespace kestrove {

FrameRateStepper::FrameRateStepper(QWidget* parent)
    : QAbstractSpinBox(parent) {
    lineEdit()->setReadOnly(true);
}

void FrameRateStepper::setValue(std::int64_t value) {
    m_value = value;
    lineEdit()->setText(QString::number(value));
    QAbstractSpinBox::update();
    QAccessibleValueChangeEvent changed(this, this->value());
    QAccessible::updateAccessibility(&changed);
}

void FrameRateStepper::stepBy(int steps) {
    if (onStep)
        onStep(FrameRateSteps::stepped(m_value, steps));
}

QSize FrameRateStepper::sizeHint() const {
    const auto text = fontMetrics().horizontalAdvance(QStringLiteral("00000"));
    const auto lineHeight = lineEdit()->sizeHint().height();
    QStyleOptionSpinBox option;
    initStyleOption(&option);
    return style()->sizeFromContents(QStyle::CT_SpinBox, &option, {text, lineHeight}, this);
}

QAbstractSpinBox::StepEnabled FrameRateStepper::stepEnabled() const {
    StepEnabled enabled = StepNone;
    enabled.setFlag(StepUpEnabled, FrameRateSteps::canStepUp(m_value));
    enabled.setFlag(StepDownEnabled, FrameRateSteps::canStepDown(m_value));
    return enabled;
}

int FrameRateStepper::value() const {
    constexpr std::int64_t most = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(m_value, -most, most));
}

void FrameRateStepper::setShownValue(int value) {
    if (onStep)
        onStep(FrameRateSteps::stepped(value, 0));
}

int FrameRateStepper::minimum() {
    return FrameRateSteps::lowest;
}

int FrameRateStepper::maximum() {
    return FrameRateSteps::highest;
}

} // namespace kestrove

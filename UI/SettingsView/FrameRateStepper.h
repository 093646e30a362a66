#pragma once

#include <QAbstractSpinBox>

#include <cstdint>
#include <functional>

namespace kestrove {

/// The two arrows of the frame rate, with its value between them; the words stand in a label of
/// their own. It shows whatever number it is given and asks for another one when the user steps.
/// Thread: main.
class FrameRateStepper final : public QAbstractSpinBox {
    Q_OBJECT
    // What assistive technology asks a spin box for.
    Q_PROPERTY(int value READ value WRITE setShownValue)
    Q_PROPERTY(int minimum READ minimum CONSTANT)
    Q_PROPERTY(int maximum READ maximum CONSTANT)

public:
    explicit FrameRateStepper(QWidget* parent = nullptr);

    void setValue(std::int64_t value);
    std::function<void(std::int64_t)> onStep;

    void stepBy(int steps) override;
    /// Wide enough for any rate that makes sense.
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    [[nodiscard]] StepEnabled stepEnabled() const override;

private:
    [[nodiscard]] int value() const;
    /// A wish of assistive technology; comes into the range.
    void setShownValue(int value);
    [[nodiscard]] static int minimum();
    [[nodiscard]] static int maximum();

    std::int64_t m_value = 0;
};

} // namespace kestrove

#include "UI/Composer/PlaceholderWidget.h"

#include "UI/Composer/PlaceholderTexts.h"

#include <QLabel>
#include <QVBoxLayout>

namespace kestrove {

namespace {

/// The secondary label colour on black, whatever the desktop's theme: that of a light theme could
/// not be read here.
constexpr QColor secondaryLabelColor(255, 255, 255, 140);

/// A point of ours is a 96th of an inch, one of a font a 72nd.
constexpr double fontPointsPerPoint = 72.0 / 96.0;

QFont placeholderFont(QFont font) {
    // Behind the desktop's own font, so that it is asked first for what that lacks: of the
    // characters that Chinese and Japanese share, a reader expects the Japanese form.
    font.setFamilies(font.families()
                     << QStringLiteral("Noto Sans CJK JP") << QStringLiteral("IPAGothic"));
    font.setPointSizeF(PlaceholderTexts::fontSize * fontPointsPerPoint);
    return font;
}

} // namespace

PlaceholderWidget::PlaceholderWidget(QWidget* parent)
    : QWidget(parent) {
    setAutoFillBackground(true);
    QPalette colors = palette();
    colors.setColor(QPalette::Window, Qt::black);
    colors.setColor(QPalette::WindowText, secondaryLabelColor);
    setPalette(colors);

    const auto text = PlaceholderTexts::label;
    auto* const label =
        new QLabel(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())), this);
    label->setAlignment(Qt::AlignCenter);
    label->setFont(placeholderFont(font()));
    // Wide texts are cut at both ends rather than broken into more than their two lines; the label
    // must not keep the window from becoming narrower either.
    label->setMinimumSize(1, 1);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(label);
}

} // namespace kestrove

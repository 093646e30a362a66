#include "UI/SettingsView/FormWidgets.h"

#include "UI/SettingsView/StatusLabel.h"

#include <QApplication>
#include <QEvent>

namespace kestrove {

namespace {

constexpr double captionScale = 0.88;
constexpr int sectionSpacing = 8;

} // namespace

QString qtText(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

FormSection::FormSection(std::string_view title)
    : box(new QGroupBox(qtText(title)))
    , layout(new QVBoxLayout(box)) {
    layout->setSpacing(sectionSpacing);
}

CaptionLabel::CaptionLabel(std::string_view text, QWidget* parent)
    : QLabel(qtText(text), parent) {
    setWordWrap(true);
    auto small = font();
    small.setPointSizeF(small.pointSizeF() * captionScale);
    setFont(small);
    fade();
}

void CaptionLabel::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && !m_isFading)
        fade();
}

void CaptionLabel::fade() {
    // Its own palette is what changes here.
    m_isFading = true;
    auto own = QApplication::palette(this);
    own.setColor(QPalette::WindowText, secondaryColor(own));
    setPalette(own);
    m_isFading = false;
}

} // namespace kestrove

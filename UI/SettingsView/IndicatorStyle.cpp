#include "UI/SettingsView/IndicatorStyle.h"

#include <QStyleOptionButton>

namespace kestrove {
namespace {

/// How much of the text's colour an outline takes: 3 to 1 against the window, as is asked for what
/// has to be seen to be used.
constexpr double shareOfText = 0.55;
/// Qt's own style darkens the window's colour by this for an outline.
constexpr int darkening = 140;

int mixed(int window, int text) {
    return static_cast<int>(window + (text - window) * shareOfText);
}

QColor outline(const QPalette& palette) {
    const auto window = palette.window().color();
    const auto text = palette.windowText().color();
    return {mixed(window.red(), text.red()), mixed(window.green(), text.green()),
            mixed(window.blue(), text.blue())};
}

} // namespace

void IndicatorStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                   QPainter* painter, const QWidget* widget) const {
    const auto* const button = qstyleoption_cast<const QStyleOptionButton*>(option);
    const bool isIndicator = element == PE_IndicatorCheckBox || element == PE_IndicatorRadioButton;
    if (!isIndicator || !button || baseStyle()->name() != "fusion") {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        return;
    }
    QStyleOptionButton outlined(*button);
    outlined.palette.setColor(QPalette::Window, outline(button->palette).lighter(darkening));
    QProxyStyle::drawPrimitive(element, &outlined, painter, widget);
}

} // namespace kestrove

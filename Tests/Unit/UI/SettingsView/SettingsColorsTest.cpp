#include "UI/SettingsView/FormWidgets.h"
#include "UI/SettingsView/IndicatorStyle.h"
#include "UI/SettingsView/StatusLabel.h"
#include "UI/ShortcutRecorder/RecorderDrawing.h"

#include <QApplication>
#include <QCheckBox>
#include <QImage>
#include <QPainter>
#include <QRadioButton>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace kestrove {
namespace {

/// Relative luminance, as contrast is defined for texts on screens.
double luminance(QColor color) {
    const auto linear = [](double channel) {
        return channel <= 0.03928 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

double contrast(QColor one, QColor other) {
    const auto [low, high] = std::minmax({luminance(one), luminance(other)});
    return (high + 0.05) / (low + 0.05);
}

struct Theme {
    const char* name;
    QColor window;
    QColor button;
    QColor text;
};

class SettingsColors : public testing::TestWithParam<Theme> {
public:
    ~SettingsColors() override { QApplication::setPalette(m_before); }

protected:
    SettingsColors()
        : m_before(QApplication::palette()) {
        QPalette palette(GetParam().button, GetParam().window);
        for (const auto role : {QPalette::WindowText, QPalette::ButtonText, QPalette::Text})
            palette.setColor(role, GetParam().text);
        palette.setColor(QPalette::Highlight, accent);
        QApplication::setPalette(palette);
    }

    static QImage picture(const QWidget& widget, const RecorderAppearance& appearance) {
        QImage image(widget.size(), QImage::Format_RGB32);
        image.fill(GetParam().window);
        QPainter painter(&image);
        RecorderDrawing::draw(painter, widget, appearance);
        return image;
    }

    const QColor accent{0x30, 0x80, 0xE0};

private:
    QPalette m_before;
};

INSTANTIATE_TEST_SUITE_P(
    Themes, SettingsColors,
    testing::Values(Theme{"Light", {0xEF, 0xEF, 0xEF}, {0xFB, 0xFB, 0xFB}, {0x10, 0x10, 0x10}},
                    Theme{"Dark", {0x28, 0x28, 0x2A}, {0x3A, 0x3A, 0x3C}, {0xF0, 0xF0, 0xF0}}),
    [](const auto& tested) { return tested.param.name; });

TEST_P(SettingsColors, StatusTextsCanBeRead) {
    for (const auto color : {StatusColor::orange, StatusColor::green, StatusColor::secondary}) {
        StatusLabel label;
        label.show({"x", StatusSymbol::none, color});
        const auto texts = label.findChildren<QLabel*>();
        ASSERT_EQ(texts.size(), 2);
        EXPECT_GE(contrast(texts.back()->palette().color(QPalette::WindowText), GetParam().window),
                  4.5);
    }
    EXPECT_GE(contrast(CaptionLabel("x").palette().color(QPalette::WindowText), GetParam().window),
              4.5);
}

TEST_P(SettingsColors, ButtonsToChooseByCanBeToldFromTheWindow) {
    QWidget window;
    auto* const style = new IndicatorStyle(&window);
    for (QAbstractButton* const button :
         {static_cast<QAbstractButton*>(new QCheckBox(&window)),
          static_cast<QAbstractButton*>(new QRadioButton(&window))}) {
        button->setStyle(style);
        button->resize(40, 30);
        const auto image = button->grab().toImage();
        double best = 1;
        for (int x = 0; x < 8; ++x)
            best = std::max(best, contrast(image.pixelColor(x, 15), GetParam().window));
        EXPECT_GE(best, 3);
    }
}

TEST_P(SettingsColors, TheRecorderIsTheColorOfControlsAndOfTheAccentWhileItRecords) {
    QWidget widget;
    widget.resize(RecorderDrawing::size(widget));
    const auto idle = picture(widget, {false, ""});
    EXPECT_EQ(idle.pixelColor(20, 13), GetParam().button);
    EXPECT_EQ(idle.pixelColor(0, 0), GetParam().window) << "outside the round corner";
    const auto recording = picture(widget, {true, ""});
    EXPECT_NE(recording.pixelColor(20, 13), GetParam().window);
    EXPECT_GT(recording.pixelColor(20, 13).blue() - recording.pixelColor(20, 13).red(), 15)
        << "a breath of the accent";
    EXPECT_LT(contrast(recording.pixelColor(70, 0), accent), 1.3);
    EXPECT_GT(contrast(idle.pixelColor(70, 0), accent), 1.3);
}

TEST_P(SettingsColors, TheTextOfTheRecorderCanBeRead) {
    QWidget widget;
    widget.resize(RecorderDrawing::size(widget));
    for (const bool isRecording : {false, true}) {
        const auto empty = picture(widget, {isRecording, ""});
        const auto written = picture(widget, {isRecording, "■■■"});
        double best = 1;
        for (int x = 40; x < 100; ++x)
            best = std::max(best, contrast(written.pixelColor(x, 13), empty.pixelColor(x, 13)));
        EXPECT_GE(best, 4.5);
    }
}

} // namespace
} // namespace kestrove

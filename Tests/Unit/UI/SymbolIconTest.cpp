#include "UI/Icons/SymbolIcon.h"

#include "UI/MenuBarView/MenuBarIconLabel.h"

#include <QGuiApplication>
#include <QImage>
#include <QPalette>

#include <gtest/gtest.h>

#include <string>

namespace kestrove {
namespace {

QPalette withText(Qt::GlobalColor color) {
    auto palette = QGuiApplication::palette();
    palette.setColor(QPalette::Text, color);
    return palette;
}

class SymbolIconTest : public testing::Test {
public:
    ~SymbolIconTest() override { QGuiApplication::setPalette(m_before); }

protected:
    /// The average of what the symbol covers wholly; absent pixels are no colour.
    static QColor colorOf(const QIcon& icon) {
        const auto image = icon.pixmap(QSize(64, 64)).toImage();
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y).alpha() == 255)
                    return image.pixelColor(x, y);
            }
        }
        return {};
    }

private:
    QPalette m_before = QGuiApplication::palette();
};

TEST_F(SymbolIconTest, EverySymbolIsDrawnAtEverySize) {
    for (const auto* const name :
         {"MenuBarIcon", "rectangle.on.rectangle", "exclamationmark.triangle.fill",
          "largecircle.fill.circle", "circle", "checkmark.square.fill", "square", "gearshape",
          "arrow.clockwise", "rectangle.dashed"}) {
        const auto icon = symbolIcon(name);
        ASSERT_FALSE(icon.isNull()) << name;
        for (const int side : {16, 22, 32, 64}) {
            const auto image = icon.pixmap(QSize(side, side)).toImage();
            EXPECT_EQ(image.size(), QSize(side, side)) << name;
            int drawn = 0;
            for (int y = 0; y < side; ++y) {
                for (int x = 0; x < side; ++x)
                    drawn += image.pixelColor(x, y).alpha() > 127 ? 1 : 0;
            }
            EXPECT_GT(drawn, side * side / 20) << name << " at " << side;
            EXPECT_LT(drawn, side * side * 9 / 10) << name << " at " << side;
        }
    }
}

TEST_F(SymbolIconTest, TakesTheColourOfTextAsItIsNow) {
    QGuiApplication::setPalette(withText(Qt::black));
    const auto icon = symbolIcon("checkmark.square.fill");
    EXPECT_EQ(colorOf(icon), QColor(Qt::black));
    QGuiApplication::setPalette(withText(Qt::white));
    EXPECT_EQ(colorOf(icon), QColor(Qt::white));
}

TEST_F(SymbolIconTest, IsNullForAnUnknownName) {
    EXPECT_TRUE(symbolIcon("no.such.symbol").isNull());
    EXPECT_TRUE(symbolIcon("").isNull());
}

TEST_F(SymbolIconTest, TheTraysImageIsSeenOnLightAndOnDark) {
    const auto image = menuBarIconLabel().pixmap(QSize(64, 64)).toImage();
    int light = 0;
    int dark = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const auto color = image.pixelColor(x, y);
            light += color.alpha() > 200 && color.lightness() > 220 ? 1 : 0;
            dark += color.alpha() > 200 && color.lightness() < 60 ? 1 : 0;
        }
    }
    EXPECT_GT(light, 150);
    EXPECT_GT(dark, 150);
}

} // namespace
} // namespace kestrove

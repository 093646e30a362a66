#include "UI/MenuBarView/Panel/PanelPlace.h"

#include <gtest/gtest.h>

namespace kestrove {
namespace {

constexpr QRect screen(100, 50, 1000, 800);
constexpr QSize panel(300, 400);

TEST(PanelPlace, IsBelowAnIconAtTheTopAndCentredOnIt) {
    EXPECT_EQ(panelPlace(panel, {500, 50, 20, 24}, screen), QRect(360, 74, 300, 400));
}

TEST(PanelPlace, IsAboveAnIconAtTheBottom) {
    EXPECT_EQ(panelPlace(panel, {500, 826, 20, 24}, screen), QRect(360, 426, 300, 400));
}

TEST(PanelPlace, StaysOnTheScreenAtEveryCorner) {
    for (const int x : {100, 1080}) {
        for (const int y : {50, 826}) {
            const QRect icon(x, y, 20, 24);
            const auto place = panelPlace(panel, icon, screen);
            EXPECT_TRUE(screen.contains(place)) << x << "," << y;
            EXPECT_EQ(place.size(), panel);
            EXPECT_FALSE(place.intersects(icon));
        }
    }
}

TEST(PanelPlace, AnIconOnAPanelThatTakesItsPlaceAwayFromTheScreenIsBesideIt) {
    EXPECT_EQ(panelPlace(panel, {500, 20, 20, 24}, screen).top(), 50);
    EXPECT_EQ(panelPlace(panel, {500, 860, 20, 24}, screen).bottom(), screen.bottom());
}

TEST(PanelPlace, IsLowerWhereThereIsNoRoomAndNeverOverTheIcon) {
    const QSize tall(300, 2000);
    EXPECT_EQ(panelPlace(tall, {1080, 826, 20, 24}, screen), QRect(800, 50, 300, 776));
    EXPECT_EQ(panelPlace(tall, {100, 50, 20, 24}, screen), QRect(100, 74, 300, 776));
}

TEST(PanelPlace, IsBesideAnIconInTheMiddleOfASide) {
    const QSize tall(300, 2000);
    EXPECT_EQ(panelPlace(tall, {100, 430, 24, 20}, screen), QRect(124, 50, 300, 800));
    EXPECT_EQ(panelPlace(tall, {1076, 430, 24, 20}, screen), QRect(776, 50, 300, 800));
}

TEST(PanelPlace, IsNeverWiderThanTheScreen) {
    EXPECT_EQ(panelPlace({3000, 100}, {500, 50, 20, 24}, screen).width(), 1000);
}

} // namespace
} // namespace kestrove

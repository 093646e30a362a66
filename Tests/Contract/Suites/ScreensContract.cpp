#include "Tests/Contract/ContractSuites.h"

#include <algorithm>
#include <set>

namespace kestrove::contract {

TEST_P(ScreensContract, ListsTheScreensOfWhichOneIsMain) {
    const auto screens = desktop().screens().screens();
    ASSERT_EQ(screens.size(), 2U);
    EXPECT_EQ(std::ranges::count(screens, true, &Screen::isMain), 1);
    std::set<DisplayID> identifiers;
    for (const auto& screen : screens) {
        EXPECT_GE(screen.frame.width, 800);
        EXPECT_GE(screen.frame.height, 600);
        EXPECT_GT(screen.backingScaleFactor, 0);
        EXPECT_NE(screen.localizedName, "");
        ASSERT_TRUE(screen.displayID);
        identifiers.insert(*screen.displayID);
        EXPECT_GE(screen.visibleFrame.minX(), screen.frame.minX());
        EXPECT_GE(screen.visibleFrame.minY(), screen.frame.minY());
        EXPECT_LE(screen.visibleFrame.maxX(), screen.frame.maxX());
        EXPECT_LE(screen.visibleFrame.maxY(), screen.frame.maxY());
    }
    EXPECT_EQ(identifiers.size(), 2U);
}

TEST_P(ScreensContract, CountsCoordinatesFromTheMainScreen) {
    const auto screens = desktop().screens().screens();
    const auto main = std::ranges::find(screens, true, &Screen::isMain);
    ASSERT_NE(main, screens.end());
    EXPECT_EQ(main->frame.origin(), (Point{0, 0}));
    const auto second = std::ranges::find(screens, false, &Screen::isMain);
    EXPECT_EQ(second->frame.minX(), main->frame.maxX());
}

TEST_P(ScreensContract, TellsOfAScreenThatWentAndCameBackAsTheSameOne) {
    const auto before = desktop().screens().screens();
    int told = 0;
    const auto subscription = desktop().screens().onChanged([&] { ++told; });
    desktop().unplugSecondDisplay();
    EXPECT_EQ(told, 0) << "only the main loop tells";
    ASSERT_TRUE(waitUntil([&] { return told > 0; }));
    EXPECT_EQ(desktop().screens().screens().size(), 1U);
    told = 0;
    desktop().plugSecondDisplay();
    ASSERT_TRUE(waitUntil([&] { return told > 0 && desktop().screens().screens().size() == 2; }));
    EXPECT_EQ(desktop().screens().screens(), before);
}

TEST_P(ScreensContract, TellsNothingWhileNothingChanges) {
    int told = 0;
    const auto subscription = desktop().screens().onChanged([&] { ++told; });
    desktop().movePointer({20, 20});
    desktop().settle();
    EXPECT_EQ(told, 0);
}

TEST_P(ScreensContract, AnEndedSubscriptionIsToldNothing) {
    int told = 0;
    int toldOther = 0;
    auto subscription = desktop().screens().onChanged([&] { ++told; });
    const auto other = desktop().screens().onChanged([&] { ++toldOther; });
    subscription.cancel();
    desktop().unplugSecondDisplay();
    ASSERT_TRUE(waitUntil([&] { return toldOther > 0; }));
    EXPECT_EQ(told, 0);
}

} // namespace kestrove::contract

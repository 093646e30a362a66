#include "Util/ScreenGeometry.h"

#include <gtest/gtest.h>

namespace kestrove {
namespace {

class FixedPointer final : public Pointer {
public:
    explicit FixedPointer(Point at)
        : m_at(at) {}
    Point location() override { return m_at; }
    Subscription addGlobalMovedMonitor(std::function<void()>) override { return {}; }
    Subscription addLocalMovedMonitor(std::function<void()>) override { return {}; }

private:
    Point m_at;
};

class FixedScreens final : public Screens {
public:
    explicit FixedScreens(std::vector<Screen> list)
        : m_list(std::move(list)) {}
    std::vector<Screen> screens() override { return m_list; }
    Subscription onChanged(std::function<void()>) override { return {}; }

private:
    std::vector<Screen> m_list;
};

Screen makeScreen(Rect frame, std::optional<DisplayID> identifier) {
    Screen screen;
    screen.frame = frame;
    screen.visibleFrame = frame;
    screen.displayID = identifier;
    return screen;
}

/// A main screen, one beside it, and between them a gap of 80 points.
std::vector<Screen> twoScreens() {
    auto main = makeScreen({0, 0, 1920, 1080}, 7);
    main.isMain = true;
    return {makeScreen({2000, 0, 1440, 900}, 9), main};
}

std::optional<DisplayID> underMouse(Point at, std::vector<Screen> list) {
    FixedPointer pointer(at);
    FixedScreens screens(std::move(list));
    return ScreenGeometry::displayIDUnderMouse(pointer, screens);
}

TEST(ScreenGeometry, SmallerEdgesBelongToAScreenLargerOnesDoNot) {
    const std::vector list{makeScreen({0, 0, 100, 100}, 1), makeScreen({100, 0, 100, 100}, 2)};
    EXPECT_EQ(ScreenGeometry::screen({0, 0}, list)->displayID, 1U);
    EXPECT_EQ(ScreenGeometry::screen({100, 0}, list)->displayID, 2U);
    EXPECT_FALSE(ScreenGeometry::screen({50, 100}, list));
    EXPECT_FALSE(ScreenGeometry::screen({-1, 50}, list));
}

TEST(ScreenGeometry, MirroredScreensGiveTheFirst) {
    const std::vector list{makeScreen({0, 0, 100, 100}, 5), makeScreen({0, 0, 100, 100}, 6)};
    EXPECT_EQ(ScreenGeometry::screen({50, 50}, list)->displayID, 5U);
}

TEST(ScreenGeometry, TellsTheDisplayUnderTheMouse) {
    EXPECT_EQ(underMouse({2100, 50}, twoScreens()), 9U);
    EXPECT_EQ(underMouse({10, 50}, twoScreens()), 7U);
}

TEST(ScreenGeometry, InAGapTheMainScreenCounts) {
    EXPECT_EQ(underMouse({1950, 50}, twoScreens()), 7U);
}

TEST(ScreenGeometry, AScreenWithoutAnIdentifierYieldsToTheMainOne) {
    auto list = twoScreens();
    list[0].displayID.reset();
    EXPECT_EQ(underMouse({2100, 50}, list), 7U);
}

TEST(ScreenGeometry, NothingIsKnownWithoutAMainIdentifier) {
    auto list = twoScreens();
    list[1].displayID.reset();
    EXPECT_EQ(underMouse({1950, 50}, list), std::nullopt);
    list[1].isMain = false;
    EXPECT_EQ(underMouse({1950, 50}, list), std::nullopt);
    EXPECT_EQ(underMouse({0, 0}, {}), std::nullopt);
}

} // namespace
} // namespace kestrove

#include "Tests/Support/Processes/FileContent.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/TestWindow/TestWindow.h"
#include "Tests/X11/Application/ApplicationFixture.h"

#include <string>
#include <string_view>

namespace kestrove::test {
namespace {

/// The pointer's display is shared from the start, so that the menu has its list of sources before
/// it opens. Its entries from the top, texts not counted: the session, the picker, two follow
/// modes, two displays, the windows, the refresh, showing and hiding the output.
class Menu : public ApplicationFixture {
protected:
    static constexpr int session = 1;
    static constexpr int followMouse = 3;
    static constexpr int followFocus = 4;
    static constexpr int rightDisplay = 6;
    static constexpr int firstWindow = 7;

    void share() {
        start("kestrove.autoStart=true\nkestrove.followMode=mouse\n");
        ASSERT_TRUE(shows(left, "the pointer's display"));
    }

    [[nodiscard]] bool hasSaved(std::string_view line) const {
        return waitUntil([&] { return contentOf(settingsFile()).contains(line); });
    }

    /// What the pattern of a window of this size is.
    [[nodiscard]] static PixelImage pattern(int width, int height) {
        PixelImage image{width, height, {}};
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x)
                image.pixels.push_back(TestWindow::patternAt(x, y));
        }
        return image;
    }
};

TEST_F(Menu, TicksAWindowAndShowsItUntilItsProgramIsKilled) {
    TestWindow picked(
        desktop.displayName(),
        {.geometry = {800, 200, 400, 300}, .fill = WindowFill::pattern, .title = "picked"});
    share();
    openMenuByMouse();
    chooseFromMenu(firstWindow);
    EXPECT_TRUE(shows(pattern(400, 300), "the ticked window"));
    EXPECT_TRUE(hasSaved("kestrove.followMode=manual"));

    picked.disconnect();
    EXPECT_TRUE(showsPlaceholder("its program is gone"));

    openMenuByKey();
    chooseFromMenu(followMouse);
    EXPECT_TRUE(hasSaved("kestrove.followMode=mouse"));
    server.movePointer(20, 20); // off the output, whose pointer is not the display's
    press(Key::space);
    EXPECT_TRUE(shows(left, "the pointer's display again"));
}

TEST_F(Menu, TicksADisplayAndTakesItBack) {
    share();
    openMenuByShiftF10();
    chooseFromMenu(rightDisplay);
    EXPECT_TRUE(shows(right, "the ticked display"));
    openMenuByMouse();
    chooseFromMenu(rightDisplay);
    EXPECT_TRUE(showsPlaceholder("nothing is ticked"));
    openMenuByKey();
    chooseFromMenu(rightDisplay);
    EXPECT_TRUE(shows(right, "ticked again"));
}

TEST_F(Menu, ChoosesTheFollowMode) {
    share();
    openMenuByKey();
    chooseFromMenu(followFocus);
    EXPECT_TRUE(hasSaved("kestrove.followMode=focusedApp"));
    openMenuByKey();
    chooseFromMenu(followMouse);
    EXPECT_TRUE(hasSaved("kestrove.followMode=mouse"));
    EXPECT_TRUE(shows(left, "the pointer's display"));
}

TEST_F(Menu, HidesTheOutputWindow) {
    share();
    openMenuByKey();
    chooseFromMenu(firstWindow + 2); // after the refresh and the showing
    EXPECT_TRUE(hasSaved("kestrove.hideOutputWindow=true"));
}

TEST_F(Menu, KeepsTheKeyboardWithTheWindowAfterItClosed) {
    share();
    for (int each = 0; each < 3; ++each) {
        openMenuByMouse();
        server.press(Key::escape);
        ASSERT_TRUE(waitUntil([this] { return !isMenuOpen(); }));
        openMenuByKey();
        chooseFromMenu(session);
        ASSERT_TRUE(showsPlaceholder("stopped"));
        server.movePointer(20, 20);
        press(Key::space);
        ASSERT_TRUE(shows(left, "started by the keyboard"));
    }
}

} // namespace
} // namespace kestrove::test

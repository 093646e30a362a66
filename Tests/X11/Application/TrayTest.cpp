#include "Tests/Support/PixelReader/PixelReader.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/X11/Application/TrayFixture.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace kestrove::test {
namespace {

constexpr auto sharing = "kestrove.autoStart=true\nkestrove.followMode=mouse\n";
constexpr std::uint8_t leftButton = 1;
constexpr std::uint8_t rightButton = 3;

class Tray : public TrayFixture {
protected:
    Tray() { startTray(); }
};

TEST_F(Tray, KeepsTheProgramWhenTheOutputIsClosedAndBringsItBack) {
    start(sharing);
    ASSERT_TRUE(waitUntil([this] { return isOutputSeen(); }));
    closeOutput();
    ASSERT_TRUE(waitUntil([this] { return !isOutputSeen(); }));
    EXPECT_TRUE(program().isRunning());

    ASSERT_TRUE(clickIcon(rightButton)) << program().logTail();
    chooseFromMenuEnd(5); // before the hiding, the settings, the policy and the end
    EXPECT_TRUE(waitUntil([this] { return isOutputSeen(); }));
}

TEST_F(Tray, IsInThePictureOfItsDisplay) {
    server.movePointer(1000, 300);
    start(sharing);
    ASSERT_TRUE(shows(right, "at first"));
    server.movePointer(300, 300); // the output shows it too
    // It takes the shape of the display first.
    ASSERT_TRUE(waitUntil([this] {
        const auto now = outputPlace();
        return std::abs(now.width * leftPlace.height - now.height * leftPlace.width) <=
               leftPlace.width;
    }));
    placeOutput({700, 60, leftPlace.width, leftPlace.height});
    auto place = iconPlace();
    constexpr int frame = 8; // around the display, on the screen only
    place.x += frame;
    place.y += frame;
    place.width -= 2 * frame;
    place.height -= 2 * frame;
    const auto isSeen = [&] {
        const auto screen = readPixels(desktop.connection(), desktop.root(), place);
        const auto inOutput = readPixels(desktop.connection(), window(), place);
        const auto isPlain =
            std::ranges::count(screen.pixels, screen.pixels.front()) == std::ssize(screen.pixels);
        return !isPlain && areAlike(inOutput, screen, 0);
    };
    EXPECT_TRUE(waitUntil(isSeen)) << program().logTail();
}

TEST_F(Tray, QuitsByItsMenu) {
    start(sharing);
    ASSERT_TRUE(clickIcon(rightButton)) << program().logTail();
    chooseFromMenuEnd(1);
    EXPECT_TRUE(endsWith(0));
}

TEST_F(Tray, EveryClickIsOneHoweverSoonItComes) {
    start(sharing);
    ASSERT_TRUE(clickIcon(leftButton)) << program().logTail();
    for (int each = 0; each < 4; ++each) {
        for (const auto button : {rightButton, rightButton, leftButton, leftButton}) {
            server.press(Key::escape);
            ASSERT_TRUE(waitUntil([this] { return !isMenuOpen(); }));
            server.click(button);
            ASSERT_TRUE(waitUntil([this] { return isMenuOpen(); })) << int(button);
        }
    }
}

} // namespace
} // namespace kestrove::test

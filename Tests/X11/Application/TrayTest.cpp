#include "Tests/Support/Processes/Waiting.h"
#include "Tests/X11/Application/TrayFixture.h"

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

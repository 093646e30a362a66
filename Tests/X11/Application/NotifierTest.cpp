#include "Tests/Support/Processes/FileContent.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/TestWindow/TestWindow.h"
#include "Tests/X11/Application/ApplicationFixture.h"
#include "Tests/X11/Application/Browser.h"
#include "Tests/X11/Application/NotifierHost.h"
#include "Tests/X11/Application/Paths.h"

#include <string>
#include <vector>

namespace kestrove::test {
namespace {

/// A desktop whose tray is of the newer kind, and draws the menus of its icons itself.
class Notifier : public ApplicationFixture {
protected:
    Notifier()
        : ApplicationFixture(WindowManager::openbox, SessionBus::own) {
        meanwhile = [this] { tray.serve(); };
    }

    void startWithBrowser(std::string_view settings) {
        writeSettings(settings);
        start({"env", browser.path(), programPath()});
        ASSERT_TRUE(tray.hasIcon()) << program().logTail();
    }

    [[nodiscard]] bool hasSaved(std::string_view line) const {
        return waitUntil([&] { return contentOf(settingsFile()).contains(line); });
    }
    [[nodiscard]] std::vector<std::string> labels() {
        std::vector<std::string> result;
        for (const auto& entry : tray.menu())
            result.push_back(entry.label.empty() ? "-" : entry.label);
        return result;
    }
    [[nodiscard]] bool isChecked(const std::string& start) {
        for (const auto& entry : tray.menu()) {
            if (entry.label.starts_with(start))
                return entry.isChecked;
        }
        return false;
    }
    /// Clicks the entry as soon as it is there.
    [[nodiscard]] bool click(const std::string& start) {
        return waitUntil([&] { return tray.click(start); });
    }

    Browser browser{desktop.folder()};
    NotifierHost tray{desktop.sessionBusAddress()};
};

TEST_F(Notifier, ShowsItsIconAndOpensThePanelWhereItWasClicked) {
    startWithBrowser("kestrove.autoStart=true\n" + onlyDisplay("LEFT"));
    ASSERT_TRUE(shows(left, "the left display"));
    EXPECT_EQ(tray.property("Status"), "Active");
    EXPECT_GE(tray.pictureWidth(), 16);
    server.movePointer(30, 10);
    tray.activate(30, 10);
    EXPECT_TRUE(waitUntil([this] { return find("Kestrove") != XCB_WINDOW_NONE; }));
    server.movePointer(1500, 700);              // whose picture is a part of the display's
    left.paint({600, 480, 20, 20}, 0xff00ff00); // a frame that is newer than the panel
    EXPECT_TRUE(shows(left, "without the panel that lies on it"));
    server.press(Key::escape);
    EXPECT_TRUE(waitUntil([this] { return find("Kestrove") == XCB_WINDOW_NONE; }));
}

TEST_F(Notifier, DoesWhatEachEntryOfItsMenuSays) {
    const TestWindow picked(
        desktop.displayName(),
        {.geometry = {1400, 300, 400, 300}, .fill = WindowFill::pattern, .title = "picked"});
    startWithBrowser("kestrove.autoStart=true\nkestrove.followMode=mouse\n");
    EXPECT_TRUE(shows(left, "the pointer's display"));
    ASSERT_TRUE(click("停止"));
    EXPECT_TRUE(showsPlaceholder("stopped"));
    EXPECT_TRUE(waitUntil([this] { return labels().at(1) == "停止中"; }));
    ASSERT_TRUE(click("開始"));
    EXPECT_TRUE(shows(left, "started"));

    ASSERT_TRUE(click("フォーカス中のアプリ"));
    EXPECT_TRUE(hasSaved("kestrove.followMode=focusedApp"));
    ASSERT_TRUE(click("マウス位置"));
    EXPECT_TRUE(hasSaved("kestrove.followMode=mouse"));
    ASSERT_TRUE(click("ソース一覧を更新"));
    ASSERT_TRUE(click("picked — "));
    EXPECT_TRUE(hasSaved("kestrove.followMode=manual"));
    EXPECT_TRUE(waitUntil([this] { return isChecked("picked"); }));
    EXPECT_FALSE(isChecked("マウス位置"));
    ASSERT_TRUE(click("RIGHT"));
    EXPECT_TRUE(waitUntil([this] { return isChecked("RIGHT") && isChecked("picked"); }));

    ASSERT_TRUE(click("出力ウィンドウを隠す"));
    EXPECT_TRUE(hasSaved("kestrove.hideOutputWindow=true"));
    ASSERT_TRUE(click("出力ウィンドウを表示（非表示モード解除）"));
    EXPECT_TRUE(hasSaved("kestrove.hideOutputWindow=false"));
    ASSERT_TRUE(click("出力ウィンドウを表示"));
    EXPECT_TRUE(waitUntil([this] { return find("kestrove") != XCB_WINDOW_NONE; }));

    ASSERT_TRUE(click("プレビューから選ぶ…"));
    EXPECT_TRUE(waitUntil([this] { return find("kestrove — ソース選択") != XCB_WINDOW_NONE; }));
    ASSERT_TRUE(click("設定・ショートカット…"));
    EXPECT_TRUE(waitUntil([this] { return find("Kestrove 設定") != XCB_WINDOW_NONE; }));
    ASSERT_TRUE(click("プライバシーポリシー"));
    EXPECT_TRUE(waitUntil([this] {
        return browser.opened().ends_with("/share/kestrove/privacy-policy.html");
    })) << browser.opened();
    ASSERT_TRUE(click("Kestrove を終了"));
    EXPECT_TRUE(endsWith(0));
}

} // namespace
} // namespace kestrove::test

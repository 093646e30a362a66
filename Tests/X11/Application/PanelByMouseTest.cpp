// Each row of the panel, by the mouse alone. Where a row lies is what assistive technology is told.

#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/TestWindow/TestWindow.h"
#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Application/Browser.h"
#include "Tests/X11/Application/Paths.h"
#include "Tests/X11/Application/TrayFixture.h"
#include "Tests/X11/Application/WindowReader.h"

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

namespace kestrove::test {
namespace {

constexpr std::uint8_t leftButton = 1;
constexpr std::uint8_t wheelUp = 4;
constexpr std::uint8_t wheelDown = 5;
/// A reader asks for each element by itself, and under a sanitizer each answer takes its time.
constexpr auto patienceWithAReader = 5 * patience;

/// The panel as a window of its own, which the test puts where there is room for all of it: on the
/// right display. The output lies on the left one. A tray keeps the program without its window.
class PanelByMouse : public TrayFixture {
protected:
    PanelByMouse()
        : TrayFixture(SessionBus::own) {
        startTray("top", "left", rightPlace);
        server.movePointer(700, 700);
    }

    void startReadably(const std::string& settings) {
        writeSettings(settings);
        start({"env", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1", browser.path(), programPath()});
    }
    /// The display with the panel and the pointer is not the one that is looked at.
    void shareLeft() {
        startReadably("kestrove.autoStart=true\n" + onlyDisplay("LEFT"));
        ASSERT_TRUE(shows(left, "the left display"));
    }

    /// Opens it, or brings it to the front, by a later start.
    void open() {
        const auto later = desktop.start({programPath()});
        ASSERT_TRUE(later->waitForExit(patience));
        ASSERT_TRUE(waitUntil([this] {
            const Reply focus(xcb_get_input_focus_reply(
                desktop.connection(), xcb_get_input_focus(desktop.connection()), nullptr));
            return isOpen() && focus && focus->focus == find("Kestrove");
        }));
        const std::array<std::uint32_t, 4> place{1450, 40, 400, 700};
        xcb_configure_window(desktop.connection(), find("Kestrove"),
                             XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                                 XCB_CONFIG_WINDOW_HEIGHT,
                             place.data());
        sync(desktop.connection());
        ASSERT_TRUE(panel.tells({"check box|RIGHT|"}));
    }
    [[nodiscard]] bool isOpen() const { return find("Kestrove") != XCB_WINDOW_NONE; }

    /// What is seen of the row, once it stays there.
    [[nodiscard]] std::optional<xcb_rectangle_t> placeOf(const std::string& row) {
        std::optional<xcb_rectangle_t> last;
        const bool stays = waitUntil(
            [&] {
                const auto now = WindowReader::placeOf(panel.read(), row);
                const bool isSame = now && last && now->x == last->x && now->y == last->y &&
                                    now->height == last->height;
                last = now;
                return isSame;
            },
            patienceWithAReader);
        return stays ? last : std::nullopt;
    }
    void pointAt(const xcb_rectangle_t& place) {
        server.movePointer(place.x + place.width / 2, place.y + place.height / 2);
    }
    void click(const std::string& row) {
        const auto place = placeOf(row);
        ASSERT_TRUE(place) << row << " is not seen in\n" << panel.read();
        pointAt(*place);
        server.click(leftButton);
    }

    Browser browser{desktop.folder()};
    WindowReader panel{desktop, "Kestrove"};
};

TEST_F(PanelByMouse, StopsAndStartsTheSession) {
    ASSERT_NO_FATAL_FAILURE(shareLeft());
    ASSERT_NO_FATAL_FAILURE(open());
    ASSERT_NO_FATAL_FAILURE(click("push button|停止|"));
    EXPECT_TRUE(showsPlaceholder("stopped"));
    EXPECT_TRUE(panel.tells({"label|停止中|", "push button|開始|"}, {"push button|停止|"}));
    ASSERT_NO_FATAL_FAILURE(click("push button|開始|"));
    EXPECT_TRUE(panel.tells({"label|稼働中|", "push button|停止|"}));
    EXPECT_TRUE(shows(left, "started"));
    EXPECT_TRUE(isOpen());
}

TEST_F(PanelByMouse, ChoosesWhatIsShared) {
    const TestWindow notes(desktop.displayName(),
                           {.geometry = {700, 500, 400, 250}, .title = "notes.txt"});
    ASSERT_NO_FATAL_FAILURE(shareLeft());
    ASSERT_NO_FATAL_FAILURE(open());
    ASSERT_NO_FATAL_FAILURE(click("radio button|フォーカス中のアプリ（自動追従）|"));
    EXPECT_TRUE(hasSaved("kestrove.followMode=focusedApp"));
    EXPECT_TRUE(panel.tells(
        {"radio "
         "button|フォーカス中のアプリ（自動追従）|フォーカス中のアプリ（自動追従）|checked,"}));
    ASSERT_NO_FATAL_FAILURE(click("radio button|マウス位置（自動追従）|"));
    EXPECT_TRUE(hasSaved("kestrove.followMode=mouse"));
    EXPECT_TRUE(panel.tells(
        {"radio button|マウス位置（自動追従）|マウス位置（自動追従）|checked,",
         "check box|RIGHT|1280 × 800、LIVE|focusable,"},
        {"radio "
         "button|フォーカス中のアプリ（自動追従）|フォーカス中のアプリ（自動追従）|checked,"}));

    ASSERT_NO_FATAL_FAILURE(click("check box|LEFT|"));
    EXPECT_TRUE(hasSaved("kestrove.followMode=manual"));
    EXPECT_TRUE(
        panel.tells({"check box|LEFT|640 × 512、LIVE|checked,"},
                    {"radio button|マウス位置（自動追従）|マウス位置（自動追従）|checked,"}));
    EXPECT_TRUE(shows(left, "the ticked display"));
    ASSERT_NO_FATAL_FAILURE(click("check box|notes.txt|"));
    EXPECT_TRUE(hasSaved(fmt::format("}},{{\"window\":{{\"_0\":{}}}}}]", notes.id())));
    EXPECT_TRUE(panel.tells({"check box|notes.txt|TestWindow", "check box|LEFT|"}));
    ASSERT_NO_FATAL_FAILURE(click("check box|LEFT|"));
    EXPECT_TRUE(panel.tells({"check box|notes.txt|TestWindow、LIVE|checked,"},
                            {"check box|LEFT|640 × 512|checked,"}));
    EXPECT_TRUE(isOpen());
}

TEST_F(PanelByMouse, ReadsTheListOfSourcesAnew) {
    // Nothing else reads it while nothing is shared.
    ASSERT_NO_FATAL_FAILURE(shareLeft());
    ASSERT_NO_FATAL_FAILURE(open());
    ASSERT_NO_FATAL_FAILURE(click("push button|停止|"));
    EXPECT_TRUE(panel.tells({"label|停止中|"}));
    EXPECT_TRUE(panel.tells({"label|利用可能なウィンドウがありません。"}));
    const TestWindow late(desktop.displayName(),
                          {.geometry = {700, 500, 400, 250}, .title = "late.txt"});
    ASSERT_NO_FATAL_FAILURE(click("push button|ソース一覧を更新|"));
    EXPECT_TRUE(panel.tells({"check box|late.txt|TestWindow|", "label|ウィンドウ 1|"}));
}

TEST_F(PanelByMouse, HidesAndShowsTheOutput) {
    ASSERT_NO_FATAL_FAILURE(shareLeft());
    closeOutput();
    ASSERT_TRUE(waitUntil([this] { return !isOutputSeen(); }));
    ASSERT_NO_FATAL_FAILURE(open());
    ASSERT_NO_FATAL_FAILURE(click("push button|出力ウィンドウを表示  "));
    EXPECT_TRUE(waitUntil([this] { return isOutputSeen(); }));

    ASSERT_NO_FATAL_FAILURE(open());
    ASSERT_NO_FATAL_FAILURE(click("push button|出力ウィンドウを隠す  "));
    EXPECT_TRUE(hasSaved("kestrove.hideOutputWindow=true"));
    EXPECT_TRUE(waitUntil([this] {
        return outputPlace().x < 0 || outputPlace().y < 0 ||
               outputPlace().x >= rightPlace.x + rightPlace.width ||
               outputPlace().y >= rightPlace.height;
    }));
    EXPECT_TRUE(isOpen());
    ASSERT_NO_FATAL_FAILURE(click("push button|出力ウィンドウを表示（非表示モード解除）  "));
    EXPECT_TRUE(hasSaved("kestrove.hideOutputWindow=false"));
    EXPECT_TRUE(shows(left, "it is back"));
    EXPECT_TRUE(isOpen());
}

TEST_F(PanelByMouse, OpensWhatItsRowsName) {
    ASSERT_NO_FATAL_FAILURE(shareLeft());
    ASSERT_NO_FATAL_FAILURE(open());
    ASSERT_NO_FATAL_FAILURE(click("push button|プレビューから選ぶ…  "));
    EXPECT_TRUE(waitUntil([this] { return find("kestrove — ソース選択") != XCB_WINDOW_NONE; }));
    ASSERT_NO_FATAL_FAILURE(open());
    ASSERT_NO_FATAL_FAILURE(click("push button|設定・ショートカット…|"));
    EXPECT_TRUE(waitUntil([this] { return find("Kestrove 設定") != XCB_WINDOW_NONE; }));
    ASSERT_NO_FATAL_FAILURE(open());
    ASSERT_NO_FATAL_FAILURE(click("push button|プライバシーポリシー|"));
    EXPECT_TRUE(waitUntil([this] {
        return browser.opened().ends_with("/share/kestrove/privacy-policy.html");
    })) << browser.opened();
    ASSERT_NO_FATAL_FAILURE(open());
    ASSERT_NO_FATAL_FAILURE(click("push button|Kestrove を終了  "));
    EXPECT_TRUE(endsWith(0));
}

TEST_F(PanelByMouse, TriesAgainAfterAnInterruption) {
    ASSERT_NO_FATAL_FAILURE(shareLeft());
    xcb_kill_client(desktop.connection(), frameWindow());
    xcb_flush(desktop.connection());
    ASSERT_TRUE(showsPlaceholder("cut"));
    ASSERT_NO_FATAL_FAILURE(open());
    const std::string section =
        "panel|出力を安全に停止しました。画面収録を再許可してから再試行してください。|";
    const auto place = placeOf(section);
    ASSERT_TRUE(place) << panel.read();
    // One element to assistive technology: its two buttons lie side by side at its lower edge.
    const auto clickButton = [&](int quarter) {
        server.movePointer(place->x + place->width * quarter / 4, place->y + place->height - 20);
        server.click(leftButton);
    };
    clickButton(3); // X knows no such page
    EXPECT_TRUE(panel.tells({section, "label|画面収録の許可が取り消されました|"}));
    clickButton(1);
    EXPECT_TRUE(panel.tells({"label|稼働中|"}, {section}));
    EXPECT_TRUE(shows(left, "shares again"));
}

TEST_F(PanelByMouse, DoesTheSameAtItsIconAndLeavesForWhatItOpens) {
    ASSERT_NO_FATAL_FAILURE(shareLeft());
    ASSERT_NO_FATAL_FAILURE(open());
    // Assistive technology lists no pop-ups; the rows lie as in the other window of their width.
    const auto row = placeOf("push button|停止|");
    const auto settings = placeOf("push button|設定・ショートカット…|");
    const auto whole = placeOf("filler|Kestrove|");
    ASSERT_TRUE(row && settings && whole) << panel.read();
    server.press(Key::escape);
    ASSERT_TRUE(waitUntil([this] { return !isOpen(); }));
    ASSERT_TRUE(clickIcon(leftButton));
    /// Counted from the upper end, or, where that is negative, from the lower one: the lists are as
    /// high as they need to be.
    const auto clickInside = [&](int y) {
        const Reply popUp(xcb_get_geometry_reply(
            desktop.connection(), xcb_get_geometry(desktop.connection(), find("Kestrove")),
            nullptr));
        ASSERT_TRUE(popUp);
        server.movePointer(popUp->x + popUp->width / 2, popUp->y + y + (y < 0 ? popUp->height : 0));
        server.click(leftButton);
    };
    clickInside(row->y - whole->y + row->height / 2);
    EXPECT_TRUE(showsPlaceholder("stopped"));
    EXPECT_TRUE(isOpen());
    clickInside(settings->y + settings->height / 2 - whole->y - whole->height);
    EXPECT_TRUE(waitUntil([this] { return find("Kestrove 設定") != XCB_WINDOW_NONE; }));
    EXPECT_TRUE(waitUntil([this] { return !isOpen(); }));
}

/// More windows than there is room for.
class PanelWithManyWindows : public PanelByMouse {
protected:
    static constexpr int windowCount = 40;

    void SetUp() override {
        for (int each = 1; each <= windowCount; ++each) {
            windows.push_back(std::make_unique<TestWindow>(
                desktop.displayName(),
                TestWindow::Options{.geometry = {static_cast<std::int16_t>(660 + 10 * each),
                                                 static_cast<std::int16_t>(40 + 10 * each), 300,
                                                 200},
                                    .title = fmt::format("window {:02}", each)}));
        }
        ASSERT_NO_FATAL_FAILURE(shareLeft());
        ASSERT_NO_FATAL_FAILURE(open());
        ASSERT_TRUE(panel.tells({fmt::format("label|ウィンドウ {}|", windowCount)}));
        ASSERT_TRUE(placeOf(refresh));
    }

    /// The place of every row outside of the lists.
    [[nodiscard]] static std::string outside(const std::string& told) {
        std::string places;
        for (const auto& row : {refresh, std::string("push button|停止|"),
                                std::string("radio button|マウス位置（自動追従）|"),
                                std::string("push button|Kestrove を終了  ")}) {
            const auto place = WindowReader::placeOf(told, row);
            places += place ? fmt::format("{},{} {}x{}; ", place->x, place->y, place->width,
                                          place->height)
                            : "nowhere; ";
        }
        return places;
    }
    [[nodiscard]] static bool isSeen(const std::string& told, const std::string& row) {
        const auto place = WindowReader::placeOf(told, row);
        const auto whole = WindowReader::placeOf(told, refresh);
        return place && whole && place->height >= whole->height;
    }
    /// The last of the windows as they are listed.
    [[nodiscard]] static std::string lastRow(const std::string& told) {
        const auto line = told.rfind("check box|window ");
        return told.substr(line,
                           told.find('|', line + std::string("check box|").size()) + 1 - line);
    }

    static inline const std::string refresh = "push button|ソース一覧を更新|";
    std::vector<std::unique_ptr<TestWindow>> windows;
};

TEST_F(PanelWithManyWindows, ScrollsOnlyThemByTheWheel) {
    auto told = panel.read();
    const auto before = outside(told);
    EXPECT_EQ(before.find("nowhere"), std::string::npos) << before;
    const auto last = lastRow(told);
    ASSERT_TRUE(isSeen(told, "check box|RIGHT|"));
    ASSERT_FALSE(WindowReader::placeOf(told, last));
    pointAt(*WindowReader::placeOf(told, "check box|RIGHT|"));
    const auto turnUntilSeen = [&](std::uint8_t wheel, const std::string& row) {
        return waitUntil(
            [&] {
                server.click(wheel);
                told = panel.read();
                return isSeen(told, row);
            },
            patienceWithAReader);
    };
    EXPECT_TRUE(turnUntilSeen(wheelDown, last)) << told;
    EXPECT_FALSE(WindowReader::placeOf(told, "check box|RIGHT|"));
    EXPECT_EQ(outside(told), before);
    // A row that was out of sight is ticked like any other.
    ASSERT_NO_FATAL_FAILURE(click(last));
    EXPECT_TRUE(hasSaved("kestrove.followMode=manual"));
    EXPECT_TRUE(turnUntilSeen(wheelUp, "check box|RIGHT|")) << told;
    EXPECT_EQ(outside(panel.read()), before);
}

TEST_F(PanelWithManyWindows, AreWalkedThroughByTheKeyboardInSight) {
    auto told = panel.read();
    const auto before = outside(told);
    const auto last = lastRow(told);
    const auto walkTo = [&](Key key, const std::string& row) {
        constexpr int atATime = 8; // fewer than there is room for
        return waitUntil(
            [&] {
                for (int step = 0; step < atATime; ++step) {
                    server.press(key);
                }
                told = panel.read();
                const auto focused = WindowReader::focusedName(told);
                const bool isInList = focused.starts_with("window ");
                EXPECT_TRUE(!isInList || isSeen(told, "check box|" + focused + "|")) << focused;
                return isSeen(told, row);
            },
            patienceWithAReader);
    };
    EXPECT_TRUE(walkTo(Key::down, last)) << told;
    EXPECT_EQ(outside(told), before);
    EXPECT_TRUE(walkTo(Key::up, "check box|LEFT|")) << told;
    EXPECT_EQ(outside(told), before);
}

} // namespace
} // namespace kestrove::test

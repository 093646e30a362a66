#include "UI/MenuBarView/NativeMenu.h"

#include "Tests/Unit/UI/MenuBarView/MenuBarViewFixture.h"

#include <QAction>
#include <QCoreApplication>

#include <algorithm>
#include <optional>

namespace kestrove {
namespace {

class NativeMenuTest : public MenuBarViewFixture {
protected:
    NativeMenuTest() { menu.emplace(*view); }

    [[nodiscard]] Texts texts() {
        Texts found;
        for (const auto* action : menu->menu().actions())
            found.push_back(action->isSeparator() ? "-" : action->text().toStdString());
        return found;
    }

    [[nodiscard]] QAction* action(const std::string& start) {
        const auto actions = menu->menu().actions();
        const auto found = std::ranges::find_if(actions, [&](const QAction* each) {
            return each->text().startsWith(QString::fromStdString(start));
        });
        EXPECT_NE(found, actions.end()) << start;
        return found == actions.end() ? nullptr : *found;
    }

    void click(const std::string& start) {
        action(start)->trigger();
        bench.settle();
    }

    std::optional<NativeMenu> menu;
};

TEST_F(NativeMenuTest, HasEveryEntryInItsOrder) {
    shortcuts = {.showPicker = "⌃⌘P", .showWindow = "⌃⌘W", .hideToggle = "⌃⌘H"};
    run(MenuCommand::refreshSources);
    EXPECT_EQ(texts(), (Texts{"kestrove",
                              "停止中",
                              "-",
                              "開始",
                              "プレビューから選ぶ…  ⌃⌘P",
                              "-",
                              "共有するソース",
                              "マウス位置（自動追従）",
                              "フォーカス中のアプリ（自動追従）",
                              "-",
                              "ディスプレイ 2 件（複数選択時はアクティブに切替）",
                              "Display 1 — 1920 × 1080",
                              "Display 2 — 1920 × 1080",
                              "-",
                              "ウィンドウ 2",
                              "Window 5 — Application",
                              "Window 6 — Application",
                              "-",
                              "ソース一覧を更新",
                              "-",
                              "出力ウィンドウを表示  ⌃⌘W",
                              "出力ウィンドウを隠す  ⌃⌘H",
                              "-",
                              "設定・ショートカット…",
                              "プライバシーポリシー",
                              "Kestrove を終了  ⌘Q"}));
}

TEST_F(NativeMenuTest, ShowsTheGuidanceAndTheTwoButtons) {
    bench.permission = ScreenRecordingPermission::denied;
    run(MenuCommand::start);
    const auto found = texts();
    const Texts section(found.begin() + 2, found.begin() + 6);
    EXPECT_EQ(section, (Texts{"-", "システム設定で画面収録を許可してから再試行してください。",
                              "再試行", "設定を開く"}));
    EXPECT_EQ(action("設定を開く")->toolTip(),
              QStringLiteral("システム設定の画面収録権限を開きます"));
    click("設定を開く");
    EXPECT_EQ(done, Texts{"preferences"});
}

TEST_F(NativeMenuTest, TextCannotBeClicked) {
    EXPECT_FALSE(action("kestrove")->isEnabled());
    EXPECT_FALSE(action("停止中")->isEnabled());
    EXPECT_FALSE(action("共有するソース")->isEnabled());
    EXPECT_TRUE(action("開始")->isEnabled());
}

TEST_F(NativeMenuTest, StartsAndStops) {
    click("開始");
    EXPECT_EQ(bench.state(), CaptureSessionState::running());
    EXPECT_EQ(action("稼働中")->isEnabled(), false);
    click("停止");
    EXPECT_EQ(bench.state(), CaptureSessionState::stopped());
}

TEST_F(NativeMenuTest, TicksFollowWhatIsPicked) {
    click("開始");
    EXPECT_TRUE(action("マウス位置")->isChecked());
    EXPECT_EQ(action("Display 1")->text().toStdString(), "Display 1 — 1920 × 1080  ● LIVE");
    click("Window 6");
    EXPECT_TRUE(action("Window 6")->isChecked());
    EXPECT_EQ(action("Window 6")->text().toStdString(), "Window 6 — Application  ● LIVE");
    EXPECT_FALSE(action("マウス位置")->isChecked());
    click("フォーカス中のアプリ");
    EXPECT_TRUE(action("フォーカス中のアプリ")->isChecked());
    EXPECT_FALSE(action("Window 6")->isChecked());
}

TEST_F(NativeMenuTest, ClickingTheCurrentFollowModeLeavesItMarked) {
    click("マウス位置");
    EXPECT_TRUE(action("マウス位置")->isChecked());
    EXPECT_EQ(bench.settings->followMode.get(), FollowMode::mouse);
}

TEST_F(NativeMenuTest, AClickWithoutEffectLeavesTheTickAsItWas) {
    bench.lister.remove(window6);
    bench.lister.add({window6, "Nobody's", "Application", std::nullopt});
    run(MenuCommand::refreshSources);
    click("Nobody's");
    EXPECT_FALSE(action("Nobody's")->isChecked());
    EXPECT_TRUE(bench.settings->manualSources.get().empty());
}

TEST_F(NativeMenuTest, KeepsTheEntriesThatStayWhileOthersCome) {
    run(MenuCommand::refreshSources);
    auto* const window = action("Window 6");
    auto* const quit = action("Kestrove を終了");
    menu->menu().setActiveAction(window);
    bench.lister.add({CaptureSource::window(4), "Early", "Application", editor});
    std::ranges::rotate(bench.lister.snapshot.lists.windows,
                        bench.lister.snapshot.lists.windows.end() - 1);
    run(MenuCommand::refreshSources);
    EXPECT_EQ(menu->menu().activeAction(), window);
    EXPECT_EQ(action("Window 6"), window);
    EXPECT_EQ(action("Kestrove を終了"), quit);
    const auto found = texts();
    const auto early = std::ranges::find(found, "Early — Application");
    ASSERT_NE(early, found.end());
    EXPECT_EQ(*(early + 1), "Window 5 — Application");
    bench.lister.remove(CaptureSource::window(4));
    run(MenuCommand::refreshSources);
    EXPECT_EQ(menu->menu().activeAction(), window);
    EXPECT_EQ(std::ranges::count(texts(), "Early — Application"), 0);
}

TEST_F(NativeMenuTest, ShowsTitlesAsTheyAreButNotTooLong) {
    bench.lister.add({CaptureSource::window(7), "Salt & Pepper\tnew\nline", "A&B", editor});
    bench.lister.add({CaptureSource::window(8), std::string(500, 'w'), "Long", editor});
    run(MenuCommand::refreshSources);
    EXPECT_EQ(action("Salt")->text().toStdString(), "Salt && Pepper new line — A&&B");
    const auto text = action("www")->text();
    EXPECT_LT(text.size(), 100);
    EXPECT_TRUE(text.endsWith(QStringLiteral("… — Long")));
}

TEST_F(NativeMenuTest, ListsTheSourcesAnewWhenItOpens) {
    menu->menu().popup({0, 0});
    bench.settle();
    EXPECT_TRUE(action("Window 5"));
}

} // namespace
} // namespace kestrove

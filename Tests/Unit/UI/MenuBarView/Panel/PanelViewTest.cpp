#include "UI/MenuBarView/Panel/PanelView.h"

#include "Tests/Support/QtSpin.h"
#include "Tests/Unit/UI/MenuBarView/MenuBarViewFixture.h"
#include "UI/MenuBarView/Panel/PanelRecovery.h"
#include "UI/MenuBarView/Panel/PanelRow.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>

#include <algorithm>
#include <optional>

namespace kestrove {
namespace {

class PanelViewTest : public MenuBarViewFixture {
protected:
    PanelViewTest() {
        panel.emplace(*view, [this] { ++left; });
        follow();
        changed = view->onChanged([this] { follow(); });
        panel->setVisible(true);
        panel->activateWindow();
        EXPECT_TRUE(spinUntil([this] { return panel->isActiveWindow(); }));
        panel->setFocus();
    }

    void follow() { panel->show(view->content()); }

    /// All texts from top to bottom, as they are on the screen.
    [[nodiscard]] Texts texts() {
        panel->resize(panel->preferredWidth(), 4000);
        QApplication::sendPostedEvents();
        std::vector<std::pair<int, std::string>> found;
        for (const auto* each : panel->findChildren<QWidget*>()) {
            if (!each->isVisible())
                continue;
            const int y = each->mapTo(&*panel, QPoint(0, 0)).y();
            if (const auto* const row = dynamic_cast<const PanelRow*>(each))
                found.emplace_back(y, row->accessibleName().toStdString());
            else if (const auto* const label = qobject_cast<const QLabel*>(each);
                     label != nullptr && !label->text().isEmpty())
                found.emplace_back(y, label->text().toStdString());
        }
        std::ranges::sort(found, {}, &std::pair<int, std::string>::first);
        Texts result;
        result.reserve(found.size());
        for (auto& each : found)
            result.push_back(std::move(each.second));
        return result;
    }

    [[nodiscard]] PanelRow* row(const std::string& start) {
        for (auto* each : panel->findChildren<QPushButton*>()) {
            auto* const found = dynamic_cast<PanelRow*>(each);
            if (found != nullptr && found->isVisible() &&
                found->accessibleName().startsWith(QString::fromStdString(start)))
                return found;
        }
        ADD_FAILURE() << "no row " << start;
        return nullptr;
    }

    [[nodiscard]] PanelRecovery* recovery() {
        for (auto* each : panel->findChildren<QWidget*>()) {
            if (auto* const found = dynamic_cast<PanelRecovery*>(each))
                return found;
        }
        return nullptr;
    }

    void click(const std::string& start) {
        auto* const clicked = row(start);
        const QPointF place = clicked->rect().center();
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            const bool isDown = type == QEvent::MouseButtonPress;
            QMouseEvent event(type, place, clicked->mapToGlobal(place), Qt::LeftButton,
                              isDown ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
            QApplication::sendEvent(clicked, &event);
        }
        bench.settle();
    }

    void press(Qt::Key key) {
        auto* const focused = panel->focusWidget();
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, Qt::NoModifier);
            QApplication::sendEvent(focused == nullptr ? &*panel : focused, &event);
        }
        bench.settle();
    }

    [[nodiscard]] std::string focused() {
        const auto* const found = dynamic_cast<PanelRow*>(panel->focusWidget());
        return found == nullptr ? "" : found->accessibleName().toStdString();
    }

    std::optional<PanelView> panel;
    Subscription changed;
    int left = 0;
};

TEST_F(PanelViewTest, HasEveryEntryInItsOrder) {
    shortcuts = {.showPicker = "⌃⌘P", .showWindow = "⌃⌘W", .hideToggle = "⌃⌘H"};
    run(MenuCommand::refreshSources);
    EXPECT_EQ(texts(),
              (Texts{"kestrove", "停止中", "開始", "プレビューから選ぶ…  ⌃⌘P", "共有するソース",
                     "マウス位置（自動追従）", "フォーカス中のアプリ（自動追従）",
                     "ディスプレイ 2 件（複数選択時はアクティブに切替）", "Display 1", "Display 2",
                     "ウィンドウ 2", "Window 5", "Window 6", "ソース一覧を更新",
                     "出力ウィンドウを表示  ⌃⌘W", "出力ウィンドウを隠す  ⌃⌘H",
                     "設定・ショートカット…", "プライバシーポリシー", "Kestrove を終了  ⌘Q"}));
}

TEST_F(PanelViewTest, SaysWhatIsMissingWhereThereIsNoSource) {
    const auto said = texts();
    EXPECT_EQ(std::ranges::count(said, "利用可能なディスプレイがありません"), 1);
    EXPECT_EQ(std::ranges::count(
                  said, "利用可能なウィンドウがありません。「ソース一覧を更新」を押してください"),
              1);
    EXPECT_EQ(std::ranges::count(said, "ソース一覧を更新"), 1);
}

TEST_F(PanelViewTest, FollowsTheSessionAndTheTicks) {
    click("開始");
    EXPECT_EQ(bench.state(), CaptureSessionState::running());
    EXPECT_TRUE(row("停止")->isEnabled());
    EXPECT_TRUE(row("マウス位置")->isChecked());
    EXPECT_EQ(row("Display 1")->accessibleDescription().toStdString(), "1920 × 1080、LIVE");
    click("Window 6");
    EXPECT_TRUE(row("Window 6")->isChecked());
    EXPECT_EQ(row("Window 6")->content().symbol, "checkmark.square.fill");
    EXPECT_FALSE(row("マウス位置")->isChecked());
    click("フォーカス中のアプリ");
    EXPECT_TRUE(row("フォーカス中のアプリ")->isChecked());
    EXPECT_FALSE(row("Window 6")->isChecked());
    EXPECT_EQ(left, 0);
}

TEST_F(PanelViewTest, LeavesBeforeWhatOpensSomethingElse) {
    for (const auto& [entry, opened] :
         std::vector<std::pair<std::string, std::string>>{{"プレビューから選ぶ…", "picker"},
                                                          {"設定", "settings"},
                                                          {"プライバシー", "privacy"},
                                                          {"Kestrove", "quit"}}) {
        done.clear();
        left = 0;
        click(entry);
        EXPECT_EQ(done, Texts{opened});
        EXPECT_EQ(left, 1) << entry;
    }
}

TEST_F(PanelViewTest, ShowsTheOneWayOutOfTheHiddenMode) {
    click("出力ウィンドウを隠す");
    EXPECT_TRUE(bench.settings->hideOutputWindow.get());
    click("出力ウィンドウを表示（非表示モード解除）");
    EXPECT_FALSE(bench.settings->hideOutputWindow.get());
}

TEST_F(PanelViewTest, IsWalkedThroughByTheKeyboard) {
    run(MenuCommand::refreshSources);
    press(Qt::Key_Down);
    EXPECT_EQ(focused(), "開始");
    press(Qt::Key_Up);
    EXPECT_EQ(focused(), "Kestrove を終了  ⌘Q");
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), "開始");
    press(Qt::Key_Tab);
    press(Qt::Key_Tab);
    press(Qt::Key_Down);
    EXPECT_EQ(focused(), "フォーカス中のアプリ（自動追従）");
    press(Qt::Key_Return);
    EXPECT_EQ(bench.settings->followMode.get(), FollowMode::focusedApp);
    press(Qt::Key_Down);
    press(Qt::Key_Space);
    EXPECT_EQ(bench.settings->followMode.get(), FollowMode::manual);
    EXPECT_TRUE(row("Display 1")->isChecked());
    EXPECT_EQ(focused(), "Display 1");
    for (const auto* const next : {"Display 2", "Window 5", "Window 6", "ソース一覧を更新"}) {
        press(Qt::Key_Down);
        EXPECT_EQ(focused(), next);
    }
    press(Qt::Key_End);
    EXPECT_EQ(focused(), "Kestrove を終了  ⌘Q");
    press(Qt::Key_Home);
    EXPECT_EQ(focused(), "開始");
}

TEST_F(PanelViewTest, ARowThatCannotBeChosenForAWhileGetsTheKeyboardBack) {
    press(Qt::Key_Down);
    ASSERT_EQ(focused(), "開始");
    auto content = view->content();
    content.session.isEnabled = false;
    panel->show(content);
    EXPECT_EQ(focused(), "") << "no other row shall get the next key press";
    follow();
    EXPECT_EQ(focused(), "開始");
}

TEST_F(PanelViewTest, TellsTheGuidanceAsOneElementWithTwoActions) {
    bench.permission = ScreenRecordingPermission::denied;
    run(MenuCommand::start);
    auto* const section = recovery();
    ASSERT_NE(section, nullptr);
    ASSERT_TRUE(section->isVisible());
    auto* const told = QAccessible::queryAccessibleInterface(section);
    ASSERT_NE(told, nullptr);
    EXPECT_EQ(told->childCount(), 0);
    EXPECT_EQ(told->text(QAccessible::Name).toStdString(),
              "システム設定で画面収録を許可してから再試行してください。");
    auto* const actions = told->actionInterface();
    ASSERT_NE(actions, nullptr);
    EXPECT_TRUE(actions->actionNames().contains(QStringLiteral("再試行")));
    EXPECT_EQ(row("再試行")->toolTip().toStdString(), "画面収録権限と共有ソースを再確認します");
    actions->doAction(QStringLiteral("設定を開く"));
    EXPECT_EQ(done, Texts{"preferences"});
}

TEST_F(PanelViewTest, HasNoGuidanceWhileItRuns) {
    click("開始");
    auto* const section = recovery();
    ASSERT_NE(section, nullptr);
    EXPECT_FALSE(section->isVisible());
}

TEST_F(PanelViewTest, TellsTheKindsOfItsRowsAndIsTickedByAssistiveTechnology) {
    run(MenuCommand::refreshSources);
    const auto told = [this](const std::string& start) {
        return QAccessible::queryAccessibleInterface(row(start));
    };
    EXPECT_EQ(told("開始")->role(), QAccessible::PushButton);
    EXPECT_EQ(told("マウス位置")->role(), QAccessible::RadioButton);
    EXPECT_TRUE(told("マウス位置")->state().checked);
    EXPECT_EQ(told("Window 5")->role(), QAccessible::CheckBox);
    told("Window 5")->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    bench.settle();
    EXPECT_EQ(bench.settings->followMode.get(), FollowMode::manual);
    EXPECT_TRUE(told("Window 5")->state().checked);
    EXPECT_FALSE(told("マウス位置")->state().checked);
}

TEST_F(PanelViewTest, ShowsAWindowThatCannotBeTickedAsSuch) {
    auto content = view->content();
    content.sources.windows.rows = {{.source = CaptureSource::window(9),
                                     .windowOwner = {},
                                     .title = "far",
                                     .subtitle = {},
                                     .symbol = "square",
                                     .isEnabled = false}};
    panel->show(content);
    EXPECT_FALSE(row("far")->isEnabled());
    row("far")->setFocus();
    EXPECT_NE(focused(), "far");
}

TEST_F(PanelViewTest, IsNoWiderForALongTitle) {
    auto content = view->content();
    const int width = panel->preferredWidth();
    content.sources.windows.rows = {{.source = CaptureSource::window(9),
                                     .windowOwner = {},
                                     .title = std::string(500, 'W'),
                                     .subtitle = {},
                                     .symbol = "square"}};
    panel->show(content);
    QApplication::sendPostedEvents();
    EXPECT_LE(panel->minimumSizeHint().width(), width);
}

TEST_F(PanelViewTest, ScrollsManySourcesOnly) {
    const int few = panel->leastHeight(panel->preferredWidth());
    auto content = view->content();
    for (std::uint32_t each = 1; each <= 100; ++each)
        content.sources.windows.rows.push_back({.source = CaptureSource::window(each),
                                                .windowOwner = {},
                                                .title = "Window",
                                                .subtitle = {},
                                                .symbol = "square"});
    panel->show(content);
    QApplication::sendPostedEvents();
    EXPECT_GT(panel->preferredHeight(), 1500);
    EXPECT_LT(panel->leastHeight(panel->preferredWidth()), few + 120);
}

} // namespace
} // namespace kestrove

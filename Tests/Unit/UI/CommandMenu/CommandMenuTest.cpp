#include "UI/CommandMenu/CommandMenu.h"

#include "Tests/Support/QtSpin.h"
#include "Tests/Unit/UI/MenuBarView/MenuBarViewFixture.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QWidget>
#include <QWindow>

#include <optional>

namespace kestrove {
namespace {

class CommandMenuTest : public MenuBarViewFixture {
protected:
    CommandMenuTest() {
        menu.emplace(*view, [this] { return bound; });
        window.resize(200, 100);
    }

    void activate(QWidget& which) {
        which.show();
        which.activateWindow();
        ASSERT_TRUE(spinUntil([&] { return QApplication::activeWindow() == &which; }));
    }

    /// As the desktop sends it: shortcuts see it first.
    static void press(QWidget& to, int key, Qt::KeyboardModifiers modifiers = {}) {
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, modifiers);
            QCoreApplication::sendEvent(to.windowHandle(), &event);
        }
    }

    [[nodiscard]] Texts texts() {
        Texts found;
        for (const auto* action : menu->menu().actions())
            found.push_back(action->isSeparator() ? "-" : action->text().toStdString());
        return found;
    }

    void click(qsizetype place) {
        menu->menu().actions().at(place)->trigger();
        bench.settle();
    }

    MenuShortcutTexts bound;
    std::optional<CommandMenu> menu;
    QWidget window;
};

TEST_F(CommandMenuTest, OpensInWhicheverWindowIsActive) {
    QWidget other;
    for (auto* const each : {&window, &other}) {
        activate(*each);
        press(*each, Qt::Key_F10);
        ASSERT_EQ(QApplication::activePopupWidget(), &menu->menu());
        EXPECT_EQ(menu->menu().pos(), each->mapToGlobal(QPoint(0, 0)));
        EXPECT_EQ(menu->menu().activeAction(), menu->menu().actions().constFirst());
        menu->menu().close();
    }
}

TEST_F(CommandMenuTest, QuitsFromEveryWindow) {
    activate(window);
    press(window, Qt::Key_Q);
    EXPECT_EQ(done, Texts{});
    press(window, Qt::Key_Q, Qt::MetaModifier);
    press(window, Qt::Key_Q, Qt::ControlModifier);
    EXPECT_EQ(done, (Texts{"quit", "quit"}));
}

TEST_F(CommandMenuTest, DoesWhatItsEntriesSay) {
    EXPECT_EQ(texts().at(0), "画面共有を開始");
    click(0);
    EXPECT_EQ(bench.state(), CaptureSessionState::running());
    EXPECT_EQ(texts().at(0), "画面共有を停止");
    (void)bench.events();
    click(3);
    EXPECT_EQ(bench.events(), Texts{"show window"});
    click(4);
    EXPECT_TRUE(bench.settings->hideOutputWindow.get());
    EXPECT_EQ(texts().at(4), "出力ウィンドウの非表示を解除");
    (void)bench.events();
    click(4);
    EXPECT_FALSE(bench.settings->hideOutputWindow.get());
    EXPECT_EQ(bench.events(), Texts{"show window"});
    bench.settings->hideOutputWindow.set(true);
    bench.settle();
    click(3);
    EXPECT_FALSE(bench.settings->hideOutputWindow.get());
    click(1);
    EXPECT_EQ(done, Texts{"picker"});
    click(0);
    EXPECT_EQ(bench.state(), CaptureSessionState::stopped());
}

TEST_F(CommandMenuTest, OffersNoPickerWithoutPermission) {
    bench.permission = ScreenRecordingPermission::denied;
    click(0);
    EXPECT_FALSE(menu->menu().actions().at(1)->isEnabled());
    EXPECT_TRUE(menu->menu().actions().at(0)->isEnabled());
}

TEST_F(CommandMenuTest, ShowsTheShortcutsInForceWhenItOpens) {
    activate(window);
    bound.startStop = "⌃⌘S";
    press(window, Qt::Key_F10);
    EXPECT_EQ(texts().at(0), "画面共有を開始  ⌃⌘S");
    menu->menu().close();
}

} // namespace
} // namespace kestrove

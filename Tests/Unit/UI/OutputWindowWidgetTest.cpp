#include "UI/OutputWindow/OutputWindowWidget.h"

#include "Tests/Support/QtSpin.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QWindow>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestrove {
namespace {

class OutputWindowWidgetTest : public testing::Test {
protected:
    OutputWindowWidgetTest() { window.show(); }

    OutputWindowCommands commands() {
        OutputWindowCommands result;
        result.isSharing = [this] { return isSharing; };
        result.start = [this] { done.emplace_back("start"); };
        result.quit = [this] { done.emplace_back("quit"); };
        result.menu = [this]() -> QMenu& { return menu; };
        result.windowClosed = [this] { done.emplace_back("closed"); };
        return result;
    }

    void press(int key, bool isAutoRepeat = false, Qt::KeyboardModifiers modifiers = {}) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers, {}, isAutoRepeat);
        QApplication::sendEvent(&window, &event);
    }

    bool isSharing = false;
    std::vector<std::string> done;
    QMenu menu;
    OutputWindowWidget window{commands(), Qt::Window};
};

using Texts = std::vector<std::string>;

TEST_F(OutputWindowWidgetTest, OpensItsMenuWhereItWasAskedFor) {
    menu.addAction(QStringLiteral("first"), [this] { done.emplace_back("first"); });
    const QPoint place = window.mapToGlobal(QPoint(10, 10));
    QContextMenuEvent event(QContextMenuEvent::Mouse, {10, 10}, place);
    QApplication::sendEvent(&window, &event);
    ASSERT_EQ(QApplication::activePopupWidget(), &menu);
    EXPECT_EQ(menu.pos(), place);

    menu.setActiveAction(menu.actions().constFirst());
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(&menu, &enter);
    EXPECT_EQ(done, Texts{"first"});
    EXPECT_FALSE(menu.isVisible());
}

TEST_F(OutputWindowWidgetTest, StartsByKeyUnlessItShares) {
    press(Qt::Key_Return);
    press(Qt::Key_Space);
    press(Qt::Key_Space, true);
    press(Qt::Key_A);
    EXPECT_EQ(done, (Texts{"start", "start"}));
    isSharing = true;
    press(Qt::Key_Return);
    EXPECT_EQ(done.size(), 2U);
}

TEST_F(OutputWindowWidgetTest, QuitsAndOpensItsMenuByKey) {
    press(Qt::Key_Q);
    EXPECT_EQ(done, Texts{});
    press(Qt::Key_Q, false, Qt::MetaModifier);
    press(Qt::Key_Q, false, Qt::ControlModifier);
    EXPECT_EQ(done, (Texts{"quit", "quit"}));
    menu.addAction(QStringLiteral("first"));
    press(Qt::Key_F10, false, Qt::ShiftModifier);
    EXPECT_TRUE(menu.isVisible());
    menu.hide();
}

TEST_F(OutputWindowWidgetTest, TellsThatItWasClosedAndKeepsItsNumber) {
    const auto number = window.winId();
    window.close();
    EXPECT_EQ(done, Texts{"closed"});
    EXPECT_FALSE(window.isVisible());
    window.show();
    EXPECT_EQ(window.winId(), number);
}

TEST_F(OutputWindowWidgetTest, FillsItselfWithItsContentAndLetsGoOfItUnharmed) {
    QWidget content;
    window.setContent(content);
    window.resize(700, 300);
    EXPECT_TRUE(content.isVisible());
    EXPECT_EQ(content.geometry(), QRect(0, 0, 700, 300));
    window.releaseContent();
    EXPECT_EQ(content.parentWidget(), nullptr);
}

TEST_F(OutputWindowWidgetTest, TakesTheSizeThatItsNativeWindowHas) {
    QWidget content;
    window.setContent(content);
    window.setGeometry(10, 20, 700, 300);
    ASSERT_TRUE(spinUntil([this] { return window.windowHandle()->size() == QSize(700, 300); }));
    // Nobody has told the widget yet.
    window.windowHandle()->resize(500, 250);
    ASSERT_EQ(content.size(), QSize(700, 300));
    window.adoptNativeGeometry();
    EXPECT_EQ(window.size(), QSize(500, 250));
    EXPECT_EQ(content.size(), QSize(500, 250));
    window.releaseContent();
}

} // namespace
} // namespace kestrove

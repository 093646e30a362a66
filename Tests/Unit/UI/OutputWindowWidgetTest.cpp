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
        result.stop = [this] { done.emplace_back("stop"); };
        result.quit = [this] { done.emplace_back("quit"); };
        result.windowClosed = [this] { done.emplace_back("closed"); };
        return result;
    }

    void press(int key, bool isAutoRepeat = false) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, {}, isAutoRepeat);
        QApplication::sendEvent(&window, &event);
    }

    /// Opens the menu, lists its texts, and chooses the one at `index`.
    std::vector<std::string> chooseFromMenu(int index) {
        std::vector<std::string> texts;
        QMetaObject::invokeMethod(
            &window,
            [&] {
                auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
                for (const auto* action : menu->actions())
                    texts.push_back(action->isSeparator() ? "-" : action->text().toStdString());
                auto* const chosen = menu->actions().at(index);
                menu->setActiveAction(chosen);
                QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
                QApplication::sendEvent(menu, &enter);
            },
            Qt::QueuedConnection);
        QContextMenuEvent event(QContextMenuEvent::Mouse, {10, 10}, window.mapToGlobal(QPoint()));
        QApplication::sendEvent(&window, &event);
        return texts;
    }

    bool isSharing = false;
    std::vector<std::string> done;
    OutputWindowWidget window{commands(), Qt::Window};
};

using Texts = std::vector<std::string>;

TEST_F(OutputWindowWidgetTest, OffersToStartWhileNothingIsShared) {
    EXPECT_EQ(chooseFromMenu(0), (Texts{"開始", "-", "終了"}));
    EXPECT_EQ(done, Texts{"start"});
}

TEST_F(OutputWindowWidgetTest, OffersToStopWhileSharing) {
    isSharing = true;
    EXPECT_EQ(chooseFromMenu(0), (Texts{"停止", "-", "終了"}));
    EXPECT_EQ(done, Texts{"stop"});
}

TEST_F(OutputWindowWidgetTest, OffersToQuit) {
    chooseFromMenu(2);
    EXPECT_EQ(done, Texts{"quit"});
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

#include "UI/MenuBarView/Panel/Panel.h"

#include "Tests/Unit/UI/MenuBarView/MenuBarViewFixture.h"

#include <QApplication>
#include <QKeyEvent>

namespace kestrove {
namespace {

/// Keys that mean the same wherever the panel's keyboard is.
class PanelKeys : public MenuBarViewFixture {
protected:
    void press(int key, Qt::KeyboardModifiers modifiers = {}) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        QApplication::sendEvent(panel.widget(), &event);
    }

    Panel panel{*view, {}};
};

TEST_F(PanelKeys, CommandQQuitsFromBothKindsOfPanel) {
    panel.openAt({0, 0, 20, 20});
    press(Qt::Key_Q);
    EXPECT_EQ(done, Texts{});
    press(Qt::Key_Q, Qt::MetaModifier);
    EXPECT_EQ(done, Texts{"quit"});
    panel.openWindow();
    press(Qt::Key_Q, Qt::ControlModifier);
    EXPECT_EQ(done, (Texts{"quit", "quit"}));
}

TEST_F(PanelKeys, EscapeClosesBothKindsOfPanel) {
    panel.openAt({0, 0, 20, 20});
    press(Qt::Key_Escape);
    EXPECT_TRUE(panel.widget() == nullptr || !panel.widget()->isVisible());
    panel.openWindow();
    ASSERT_TRUE(panel.widget() != nullptr && panel.widget()->isVisible());
    press(Qt::Key_Escape);
    EXPECT_TRUE(panel.widget() == nullptr || !panel.widget()->isVisible());
}

} // namespace
} // namespace kestrove

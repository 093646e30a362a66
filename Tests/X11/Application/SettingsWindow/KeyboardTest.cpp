#include "Tests/X11/Application/SettingsWindow/SettingsWindowFixture.h"

#include <array>
#include <string>

namespace kestrove::test {
namespace {

namespace Keys = ServerKey;

class SettingsWindowByKeyboard : public SettingsWindowFixture {
protected:
    static std::string recorderOf(std::string_view action) {
        return std::string(action) + "のショートカット";
    }
};

TEST_F(SettingsWindowByKeyboard, TabLeadsThroughEveryControlAndBack) {
    open();
    const std::array order{std::string("手動で選択"),
                           std::string("フレームレート: 30 fps"),
                           std::string("出力ウィンドウを常に最前面に表示"),
                           std::string("出力ウィンドウを自分のデスクトップから隠す"),
                           std::string("アプリ起動時に自動で開始"),
                           recorderOf(startStop),
                           recorderOf(showPicker),
                           recorderOf(showWindow),
                           recorderOf(hideToggle),
                           std::string("デフォルトに戻す")};
    EXPECT_TRUE(isFocused(order.front())) << "the choice that is made";
    for (std::size_t next = 1; next < order.size(); ++next) {
        press({Keys::tab});
        ASSERT_TRUE(isFocused(order.at(next)));
    }
    press({Keys::tab});
    ASSERT_TRUE(isFocused(order.front()));
    for (std::size_t next = order.size(); next-- > 0;) {
        press({Keys::shift, Keys::tab});
        ASSERT_TRUE(isFocused(order.at(next)));
    }
}

TEST_F(SettingsWindowByKeyboard, EveryControlChangesWhatIsStored) {
    open();
    press({Keys::up});
    EXPECT_TRUE(stores("kestrove.followMode=focusedApp\n"));
    press({Keys::up});
    EXPECT_TRUE(stores("kestrove.followMode=mouse\n"));
    EXPECT_TRUE(tells({"radio button|マウス位置（自動追従）|モード|checked,focusable,focused,"}));

    tabTo("フレームレート: 30 fps");
    press({Keys::up});
    EXPECT_TRUE(stores("kestrove.targetFPS=35\n"));
    for (int step = 0; step < 10; ++step)
        press({Keys::down});
    EXPECT_TRUE(stores("kestrove.targetFPS=15\n"));
    EXPECT_TRUE(tells({"spin button|フレームレート: 15 fps||focusable,focused,enabled|"
                       "SetFocus,Increase,Decrease|15..15..60"}));

    tabTo("出力ウィンドウを常に最前面に表示");
    press({Keys::space});
    EXPECT_TRUE(stores("kestrove.alwaysOnTop=true\n"));
    tabTo("アプリ起動時に自動で開始");
    press({Keys::space});
    EXPECT_TRUE(stores("kestrove.autoStart=true\n"));
    press({Keys::shift, Keys::tab});
    press({Keys::space});
    EXPECT_TRUE(stores("kestrove.hideOutputWindow=true\n"));
    EXPECT_TRUE(tells({"check box|出力ウィンドウを常に最前面に表示||checked,",
                       "check box|出力ウィンドウを自分のデスクトップから隠す||checked,",
                       "check box|アプリ起動時に自動で開始||checked,"}));
}

TEST_F(SettingsWindowByKeyboard, EveryShortcutIsRecordedAndAllArePutBack) {
    open();
    record(startStop, {Keys::control, Keys::alt, Keys::s});
    record(showPicker, {Keys::f5});
    record(showWindow, {Keys::super, Keys::shift, Keys::w});
    record(hideToggle, {Keys::control, Keys::alt, Keys::shift, Keys::super, Keys::space});
    EXPECT_TRUE(
        tells({recorder(startStop, "⌃⌥S", applied), recorder(showPicker, "F5", applied),
               recorder(showWindow, "⇧⌘W", applied), recorder(hideToggle, "⌃⌥⇧⌘Space", applied),
               "label|グローバルショートカット 4件を登録済み|"}));
    EXPECT_TRUE(
        stores(R"(kestrove.shortcutBindings={"startStop":{"keyCode":1,"modifiers":6144,)"
               R"("characters":"s"},"showPicker":{"keyCode":96,"modifiers":0,"characters":""},)"
               R"("showWindow":{"keyCode":13,"modifiers":768,"characters":"w"},)"
               R"("hideToggle":{"keyCode":49,"modifiers":6912,"characters":""}})"));
    tabTo("デフォルトに戻す");
    press({Keys::space});
    EXPECT_TRUE(
        tells({recorder(startStop, "⌃⌘S", applied), recorder(showPicker, "⌃⌘P", applied),
               recorder(showWindow, "⌃⌘W", applied), recorder(hideToggle, "⌃⌘H", applied)}));
    EXPECT_TRUE(stores(R"("hideToggle":{"keyCode":4,"modifiers":4352,"characters":"H"}})"));
}

TEST_F(SettingsWindowByKeyboard, RecordingIsCancelledByEscapeAndGoesOnAtBareKeys) {
    open();
    tabTo(recorderOf(startStop));
    press({Keys::space});
    ASSERT_TRUE(tells({recording(startStop)}));
    // None of them is a shortcut alone, and none does what it does elsewhere.
    for (const auto bare : {Keys::s, Keys::returnKey, Keys::space, Keys::tab, Keys::up})
        press({bare});
    press({Keys::shift});
    EXPECT_TRUE(tells({recording(startStop)}));
    press({Keys::escape});
    EXPECT_TRUE(tells({recorder(startStop, "⌃⌘S", applied)}));
    EXPECT_EQ(stored().find("shortcutBindings"), std::string::npos);
    // The keyboard goes on from where it was.
    press({Keys::tab});
    EXPECT_TRUE(isFocused(recorderOf(startStop)));
    press({Keys::tab});
    EXPECT_TRUE(isFocused(recorderOf(showPicker)));
}

TEST_F(SettingsWindowByKeyboard, RecordingEndsWhenAnotherProgramGetsTheFocus) {
    open();
    tabTo(recorderOf(startStop));
    press({Keys::returnKey});
    ASSERT_TRUE(tells({recording(startStop)}));
    focusOther();
    EXPECT_TRUE(tells({recorder(startStop, "⌃⌘S", applied)}));
    pressControlSuper(Keys::s);
    EXPECT_TRUE(shows(right, "the keyboard is everybody's again"));
    EXPECT_EQ(stored().find("shortcutBindings"), std::string::npos);
}

} // namespace
} // namespace kestrove::test

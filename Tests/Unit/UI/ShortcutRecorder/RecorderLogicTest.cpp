#include "UI/ShortcutRecorder/RecorderLogic.h"
#include "Tests/Support/ScriptedDesktop/CallLog.h"
#include "UI/ShortcutRecorder/RecorderAccessibility.h"

#include <gtest/gtest.h>

namespace kestrove {
namespace {

using Calls = std::vector<std::string>;
using namespace EventModifierFlag;
constexpr auto handled = KeyPressOutcome::handled;
constexpr auto passedOn = KeyPressOutcome::passedOn;

class ScriptedHost final : public RecorderHost {
public:
    explicit ScriptedHost(CallLog& calls)
        : m_calls(calls) {}
    void becomeFirstResponder() override { m_calls.add("become first responder"); }
    void clearFirstResponder() override { m_calls.add("clear first responder"); }
    void selectNextKeyView() override { m_calls.add("next"); }
    void selectPreviousKeyView() override { m_calls.add("previous"); }
    void redraw() override { m_calls.add("redraw"); }

private:
    CallLog& m_calls;
};

class RecorderLogicTest : public testing::Test {
protected:
    RecorderLogicTest() {
        logic.onCapture = [this](const ShortcutBinding& binding) {
            calls.add("capture");
            captured.push_back(binding);
        };
        logic.onRecordingChange = [this](bool isRecording) {
            calls.add(isRecording ? "recording" : "not recording");
        };
    }
    void record() {
        logic.mouseDown();
        calls.clear();
    }

    CallLog calls;
    ScriptedHost host{calls};
    RecorderLogic logic{host};
    std::vector<ShortcutBinding> captured;
};

TEST_F(RecorderLogicTest, SpaceReturnAClickAndAPressBeginRecording) {
    const Calls begun{"become first responder", "redraw", "recording"};
    const auto expectBegun = [&] {
        EXPECT_TRUE(logic.isRecording());
        EXPECT_EQ(calls.take(), begun);
        logic.resignFirstResponder();
        calls.clear();
    };
    EXPECT_EQ(logic.keyDown({KeyCode::space, 0, " "}), handled);
    expectBegun();
    EXPECT_EQ(logic.keyDown({KeyCode::returnKey, 0, "\r"}), handled);
    expectBegun();
    logic.mouseDown();
    expectBegun();
    logic.accessibilityPerformPress();
    expectBegun();
    EXPECT_TRUE(captured.empty());
}

TEST_F(RecorderLogicTest, WhileIdleTabMovesOnAndOtherKeysArePassedOn) {
    EXPECT_EQ(logic.keyDown({KeyCode::tab, 0, ""}), handled);
    EXPECT_EQ(logic.keyDown({KeyCode::tab, shift, ""}), handled);
    EXPECT_EQ(logic.keyDown({1, 0, "s"}), passedOn);
    EXPECT_EQ(logic.keyDown({1, control | command, "s"}), passedOn);
    EXPECT_EQ(logic.keyDown({KeyCode::escape, 0, ""}), passedOn);
    EXPECT_EQ(logic.keyDown({96, 0, ""}), passedOn);
    EXPECT_EQ(calls.take(), (Calls{"next", "previous"}));
    EXPECT_FALSE(logic.isRecording());
}

TEST_F(RecorderLogicTest, AKeyWithModifiersIsCaptured) {
    record();
    EXPECT_EQ(logic.keyDown({1, control | command | capsLock, "s"}), handled);
    EXPECT_EQ(captured, (std::vector<ShortcutBinding>{{1, 0x1100, "s"}}));
    EXPECT_EQ(calls.take(), (Calls{"capture", "redraw", "not recording", "clear first responder"}));
    EXPECT_FALSE(logic.isRecording());
}

TEST_F(RecorderLogicTest, AFunctionKeyAloneIsCaptured) {
    record();
    EXPECT_EQ(logic.keyDown({96, 0, ""}), handled);
    EXPECT_EQ(captured, (std::vector<ShortcutBinding>{{96, 0, ""}}));
}

TEST_F(RecorderLogicTest, ABareKeyIsIgnoredAndRecordingGoesOn) {
    record();
    for (const std::uint32_t keyCode : {1U, 18U, 36U, 48U, 49U, 51U, 117U, 123U, 106U})
        EXPECT_EQ(logic.keyDown({keyCode, capsLock, "x"}), handled) << keyCode;
    EXPECT_TRUE(logic.isRecording());
    EXPECT_TRUE(calls.take().empty());
    EXPECT_EQ(logic.keyDown({51, option, ""}), handled);
    EXPECT_EQ(captured, (std::vector<ShortcutBinding>{{51, 0x800, ""}}));
}

TEST_F(RecorderLogicTest, EscapeCancelsWithAnyModifiers) {
    for (const std::uint32_t flags : {0U, command, control | shift}) {
        record();
        EXPECT_EQ(logic.keyDown({KeyCode::escape, flags, ""}), handled);
        EXPECT_EQ(calls.take(), (Calls{"redraw", "not recording", "clear first responder"}));
    }
    EXPECT_TRUE(captured.empty());
}

TEST_F(RecorderLogicTest, ASecondClickCancels) {
    record();
    logic.mouseDown();
    EXPECT_EQ(calls.take(), (Calls{"redraw", "not recording", "clear first responder"}));
    EXPECT_TRUE(captured.empty());
}

TEST_F(RecorderLogicTest, LosingTheFocusCancels) {
    record();
    logic.resignFirstResponder();
    EXPECT_EQ(calls.take(), (Calls{"redraw", "not recording"}));
    logic.resignFirstResponder();
    EXPECT_TRUE(calls.take().empty()) << "nothing has changed";
}

TEST_F(RecorderLogicTest, ShowsTheBindingOrThatThereIsNone) {
    EXPECT_EQ(logic.appearance(), (RecorderAppearance{false, "未設定"}));
    logic.setCurrentBinding({1, 0x1100, "s"});
    EXPECT_EQ(calls.take(), Calls{"redraw"});
    EXPECT_EQ(logic.appearance(), (RecorderAppearance{false, "⌃⌘S"}));
    logic.setCurrentBinding({1, 0, "s"});
    EXPECT_EQ(logic.appearance(), (RecorderAppearance{false, "未設定"})) << "not valid";
    logic.mouseDown();
    EXPECT_EQ(logic.appearance(), (RecorderAppearance{true, "キーを押す…"}));
}

TEST(RecorderAccessibility, SaysActionBindingAndStatus) {
    EXPECT_EQ(recorderLabel("プレビューから選ぶ"), "プレビューから選ぶのショートカット");
    EXPECT_EQ(recorderValue(false, {1, 0x1100, "s"}, "適用済み"), "⌃⌘S、適用済み");
    EXPECT_EQ(recorderValue(true, {1, 0x1100, "s"}, "適用済み"), "入力中");
    EXPECT_EQ(recorderHint, "SpaceまたはReturnで入力を開始し、Escapeで取り消します");
}

} // namespace
} // namespace kestrove

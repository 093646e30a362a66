#include "UI/SettingsView/SettingsWindow.h"
#include "Core/AppController/ShortcutSettingsCoordinator.h"
#include "Platform/Simulated/SimulatedMainLoop.h"
#include "Tests/Support/ScriptedDesktop/MemoryUserDefaults.h"
#include "Tests/Support/ScriptedDesktop/RecordingLog.h"
#include "Tests/Support/ScriptedDesktop/ScriptedHotKeyRegistrar.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QGroupBox>
#include <QKeyEvent>

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <set>
#include <utility>

namespace kestrove {
namespace {

constexpr auto shortcutsKey = "kestrove.shortcutBindings";

class SettingsWindowTest : public testing::Test {
protected:
    void open() {
        settings.emplace(defaults);
        shortcuts.emplace(std::make_unique<ScriptedHotKeyRegistrar>(keyboard), log, "");
        ShortcutHandlers handlers;
        for (const auto action : allShortcutActions)
            handlers.emplace(action, [] {});
        coordinator.emplace(loop, *settings, *shortcuts, handlers);
        window.emplace(SettingsViewCollaborators{loop, *settings, *shortcuts, recorderKeyboard()},
                       [this](QWidget&) { ++broughtToFront; });
        window->open();
    }
    RecorderKeyboard recorderKeyboard() {
        return {
            .keyCode = [](std::uint32_t scanCode) -> std::optional<std::uint32_t> {
                constexpr std::uint32_t aModifier = 500;
                return scanCode == aModifier ? std::nullopt : std::optional(scanCode);
            },
            .characters = [](std::uint32_t keyCode) { return keyCode == 1 ? "s" : "x"; },
            .announce = [this](const QString& text) { announced.push_back(text.toStdString()); }};
    }
    QWidget& widget() { return *window->widget(); }
    void settle() {
        loop.runUntilIdle();
        QApplication::processEvents();
    }

    std::vector<std::string> texts() {
        std::vector<std::string> found;
        for (const auto* const label : widget().findChildren<QLabel*>()) {
            if (label->isVisible() && !label->text().isEmpty())
                found.push_back(label->text().toStdString());
        }
        return found;
    }
    bool shows(const std::string& text) { return std::ranges::count(texts(), text) > 0; }
    QAbstractButton& button(const std::string& text) {
        for (auto* const each : widget().findChildren<QAbstractButton*>()) {
            if (each->text().toStdString() == text)
                return *each;
        }
        ADD_FAILURE() << "no " << text;
        std::abort();
    }
    /// Of the action of this number.
    ShortcutRecorder& recorder(std::size_t number) {
        std::vector<ShortcutRecorder*> found;
        for (auto* const each : widget().findChildren<QWidget*>()) {
            if (auto* const one = dynamic_cast<ShortcutRecorder*>(each))
                found.push_back(one);
        }
        EXPECT_EQ(found.size(), 4U);
        return *found.at(number);
    }
    static void press(QWidget& target, std::uint32_t keyCode, Qt::KeyboardModifiers modifiers,
                      int qtKey = 0) {
        QKeyEvent down(QEvent::KeyPress, qtKey, modifiers, keyCode, 0, 0);
        QApplication::sendEvent(&target, &down);
        QKeyEvent up(QEvent::KeyRelease, qtKey, modifiers, keyCode, 0, 0);
        QApplication::sendEvent(&target, &up);
    }
    void record(std::size_t row, std::uint32_t keyCode, Qt::KeyboardModifiers modifiers) {
        recorder(row).performPress();
        press(recorder(row), keyCode, modifiers);
        settle();
    }

    SimulatedMainLoop loop;
    MemoryUserDefaults defaults;
    RecordingLog log;
    ScriptedKeyboard keyboard;
    std::vector<std::string> announced;
    int broughtToFront = 0;
    std::optional<AppSettings> settings;
    std::optional<GlobalShortcuts> shortcuts;
    std::optional<ShortcutSettingsCoordinator> coordinator;
    std::optional<SettingsWindow> window;
};

TEST_F(SettingsWindowTest, HasFourSectionsWithTheirWords) {
    open();
    std::vector<std::string> titles;
    for (const auto* const box : widget().findChildren<QGroupBox*>())
        titles.push_back(box->title().toStdString());
    EXPECT_EQ(titles,
              (std::vector<std::string>{"追従設定", "出力", "起動", "グローバルショートカット"}));
    for (const auto* const text :
         {"モード", "手動モードでは、メニューバーからディスプレイ／ウィンドウを直接選びます。",
          "フレームレート: 30 fps",
          "有効にすると出力ウィンドウを画面外へ移動します。Meet / "
          "Zoomの共有候補と既存共有を維持できるかは現在実機確認中です。",
          "画面共有 開始 / 停止", "プレビューから選ぶ", "出力ウィンドウを表示",
          "出力ウィンドウの非表示モードをトグル", "グローバルショートカット 4件を登録済み",
          "クリックまたは Space / Return "
          "で入力を開始します。通常キーは修飾キーが必要です。F1〜F15は単独でも設定できます。Escape "
          "でキャンセルします。"})
        EXPECT_TRUE(shows(text)) << text;
    EXPECT_EQ(std::ranges::count(texts(), "適用済み"), 4);
    for (const auto* const text :
         {"マウス位置（自動追従）", "フォーカス中のアプリ（自動追従）", "手動で選択",
          "出力ウィンドウを常に最前面に表示", "出力ウィンドウを自分のデスクトップから隠す",
          "アプリ起動時に自動で開始", "デフォルトに戻す"})
        (void)button(text);
}

TEST_F(SettingsWindowTest, EditsTheSettingsAndFollowsThem) {
    open();
    EXPECT_TRUE(button("マウス位置（自動追従）").isChecked());
    button("手動で選択").click();
    EXPECT_EQ(settings->followMode.get(), FollowMode::manual);
    settings->followMode.set(FollowMode::focusedApp);
    settle();
    EXPECT_TRUE(button("フォーカス中のアプリ（自動追従）").isChecked());

    const std::vector<std::pair<const char*, Published<bool>*>> toggles{
        {"出力ウィンドウを常に最前面に表示", &settings->alwaysOnTop},
        {"出力ウィンドウを自分のデスクトップから隠す", &settings->hideOutputWindow},
        {"アプリ起動時に自動で開始", &settings->autoStart}};
    for (const auto& [text, setting] : toggles) {
        EXPECT_FALSE(button(text).isChecked());
        button(text).click();
        EXPECT_TRUE(setting->get()) << text;
        setting->set(false);
        settle();
        EXPECT_FALSE(button(text).isChecked()) << text;
    }
    EXPECT_EQ(defaults.writes.take().size(), 8U) << "what is rendered is not written back";
}

TEST_F(SettingsWindowTest, StepsTheFrameRateFromWhereverItIs) {
    defaults.values["kestrove.targetFPS"] = std::int64_t{7};
    open();
    EXPECT_TRUE(shows("フレームレート: 7 fps"));
    auto* const stepper = widget().findChild<FrameRateStepper*>();
    settle();
    EXPECT_TRUE(defaults.writes.take().empty());
    QKeyEvent up(QEvent::KeyPress, Qt::Key_Up, Qt::NoModifier);
    QApplication::sendEvent(stepper, &up);
    settle();
    EXPECT_EQ(settings->targetFPS.get(), 15);
    EXPECT_TRUE(shows("フレームレート: 15 fps"));
    QKeyEvent down(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
    QApplication::sendEvent(stepper, &down);
    settle();
    EXPECT_EQ(settings->targetFPS.get(), 15);
    settings->targetFPS.set(60);
    settle();
    QApplication::sendEvent(stepper, &up);
    EXPECT_EQ(settings->targetFPS.get(), 60);
}

TEST_F(SettingsWindowTest, LosesNoStepOfTheFrameRate) {
    open();
    auto* const stepper = widget().findChild<FrameRateStepper*>();
    settle();
    // All before the window is drawn once: as when the program is busy.
    QKeyEvent down(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
    for (const std::int64_t rate : {25, 20, 15, 15}) {
        QApplication::sendEvent(stepper, &down);
        EXPECT_EQ(settings->targetFPS.get(), rate);
    }
    QKeyEvent up(QEvent::KeyPress, Qt::Key_Up, Qt::NoModifier);
    QApplication::sendEvent(stepper, &up);
    EXPECT_EQ(settings->targetFPS.get(), 20);
    settle();
    EXPECT_TRUE(shows("フレームレート: 20 fps"));
}

TEST_F(SettingsWindowTest, BeginsAtTheModeThatIsChosen) {
    defaults.values["kestrove.followMode"] = std::string("manual");
    open();
    settle();
    EXPECT_EQ(QApplication::focusWidget(), &button("手動で選択"));
    EXPECT_EQ(settings->followMode.get(), FollowMode::manual);
}

TEST_F(SettingsWindowTest, RecordsAShortcutAndSaysThatItIsApplied) {
    open();
    record(0, 2, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(settings->shortcutBindings.get().at(ShortcutAction::startStop),
              (ShortcutBinding{2, 0x1800, "x"}));
    EXPECT_FALSE(recorder(0).logic().isRecording());
    EXPECT_EQ(recorder(0).logic().appearance().text, "⌃⌥X");
    EXPECT_EQ(recorder(0).accessibleValue().toStdString(), "⌃⌥X、適用済み");
    EXPECT_EQ(announced, std::vector<std::string>{"適用済み"});
    EXPECT_FALSE(defaults.dataText(shortcutsKey).empty());
}

TEST_F(SettingsWindowTest, TakesADuplicateBackAndSaysSo) {
    open();
    record(3, 1, Qt::ControlModifier | Qt::MetaModifier);
    EXPECT_EQ(std::ranges::count(texts(), "ほかの操作と重複しています"), 2);
    EXPECT_TRUE(shows("登録できていないショートカットがあります"));
    EXPECT_TRUE(shows("変更は適用されていません。以前の有効なショートカットを維持しています。"));
    EXPECT_EQ(recorder(3).logic().appearance().text, "⌃⌘H");
    EXPECT_EQ(announced, (std::vector<std::string>(3, "ほかの操作と重複しています")))
        << "both rows, and the one whose binding came back";
    button("デフォルトに戻す").click();
    settle();
    // What is wanted is in force: nothing to install, so the message stays until an edit works.
    record(3, 5, Qt::ControlModifier | Qt::MetaModifier);
    EXPECT_TRUE(shows("グローバルショートカット 4件を登録済み"));
}

/// An edit of two shortcuts at a time, of which the keyboard refuses some calls.
struct RefusedEdit {
    using Operation = ScriptedKeyboard::Operation;

    std::string name;
    /// The calls that fail, each as the how manieth of its kind since the edit, from 1.
    std::set<std::pair<Operation, int>> failing;
    std::string firstRow;
    std::string lastRow;
    std::string block;
    /// What the edit gives both beside their keys.
    std::uint32_t modifiers = 0x1100;
};

void PrintTo(const RefusedEdit& edit, std::ostream* out) {
    *out << edit.name;
}

class RefusedEdits : public SettingsWindowTest, public testing::WithParamInterface<RefusedEdit> {};

constexpr auto kept = "変更は適用されていません。以前の有効なショートカットを維持しています。";
constexpr auto lost =
    "以前の設定を完全には復元できませんでした。一部のショートカットは未適用です。";
constexpr auto stuck = "変更の後始末に失敗しました。表示と実際のキーが異なる可能性があります。";
constexpr auto refused = "macOSで登録できません。別の組み合わせを選んでください";

INSTANTIATE_TEST_SUITE_P(
    Of, RefusedEdits,
    testing::Values(
        RefusedEdit{"Handler",
                    {{RefusedEdit::Operation::install, 1}},
                    "macOSのショートカット受付を開始できません",
                    "macOSのショートカット受付を開始できません",
                    kept},
        RefusedEdit{
            "Registration", {{RefusedEdit::Operation::registering, 2}}, "適用済み", refused, kept},
        RefusedEdit{"Unregistration",
                    {{RefusedEdit::Operation::unregistering, 1}},
                    "以前のショートカットを解除できません。変更は適用されていません",
                    "適用済み",
                    kept},
        RefusedEdit{
            "Cleanup",
            {{RefusedEdit::Operation::registering, 2}, {RefusedEdit::Operation::unregistering, 3}},
            "失敗した変更を解除できません。表示と実際のキーが異なる可能性があります",
            refused,
            stuck},
        RefusedEdit{
            "Restoration",
            {{RefusedEdit::Operation::registering, 2}, {RefusedEdit::Operation::registering, 3}},
            "以前のショートカットを復元できません。ショートカットは未適用です",
            refused,
            lost},
        RefusedEdit{"Keys",
                    {},
                    "保存済みショートカットが無効です",
                    "保存済みショートカットが無効です",
                    kept,
                    0}),
    [](const auto& tested) { return tested.param.name; });

TEST_P(RefusedEdits, SayWhyInTheirRowsAndWhatIsInForce) {
    open();
    std::map<RefusedEdit::Operation, int> calls;
    keyboard.statusOf = [&](int, RefusedEdit::Operation operation) -> HotKeyStatus {
        return GetParam().failing.contains({operation, ++calls[operation]}) ? -1 : 0;
    };
    auto edited = settings->shortcutBindings.get();
    edited[ShortcutAction::startStop] = {2, GetParam().modifiers, "d"};
    edited[ShortcutAction::hideToggle] = {3, GetParam().modifiers, "f"};
    settings->shortcutBindings.set(edited);
    settle();
    EXPECT_EQ(recorder(0).accessibleValue().toStdString(), "⌃⌘S、" + GetParam().firstRow);
    EXPECT_EQ(recorder(3).accessibleValue().toStdString(), "⌃⌘H、" + GetParam().lastRow);
    EXPECT_TRUE(shows(GetParam().firstRow));
    EXPECT_TRUE(shows(GetParam().lastRow));
    EXPECT_TRUE(shows("登録できていないショートカットがあります"));
    EXPECT_TRUE(shows(GetParam().block));
    EXPECT_EQ(settings->shortcutBindings.get(), defaultShortcutBindings());
    EXPECT_TRUE(defaults.dataText(shortcutsKey).empty());
}

TEST_F(SettingsWindowTest, ShowsARecoveryUntilAnEditWorks) {
    defaults.putData(shortcutsKey,
                     R"({"startStop":{"keyCode":4,"modifiers":4352,"characters":"h"}})");
    open();
    EXPECT_TRUE(shows("保存済み設定を既定のショートカットへ復旧しました"));
    EXPECT_TRUE(shows("グローバルショートカット 4件を登録済み"));
    record(0, 2, Qt::ControlModifier);
    EXPECT_FALSE(shows("保存済み設定を既定のショートカットへ復旧しました"));
}

TEST_F(SettingsWindowTest, GoesBackToTheDefaults) {
    open();
    record(0, 2, Qt::ControlModifier);
    button("デフォルトに戻す").click();
    settle();
    EXPECT_EQ(settings->shortcutBindings.get(), defaultShortcutBindings());
    EXPECT_EQ(recorder(0).logic().appearance().text, "⌃⌘S");
}

TEST_F(SettingsWindowTest, TabGoesThroughEverythingInItsOrder) {
    open();
    const auto nameOf = [](QWidget* focused) {
        return focused == nullptr ? std::string("nothing")
                                  : QAccessible::queryAccessibleInterface(focused)
                                        ->text(QAccessible::Name)
                                        .toStdString();
    };
    const auto tab = [this] {
        auto* const focused = QApplication::focusWidget();
        press(focused == nullptr ? widget() : *focused, 48, Qt::NoModifier, Qt::Key_Tab);
        return QApplication::focusWidget();
    };
    const std::vector<std::string> order{"マウス位置（自動追従）",
                                         "フレームレート: 30 fps",
                                         "出力ウィンドウを常に最前面に表示",
                                         "出力ウィンドウを自分のデスクトップから隠す",
                                         "アプリ起動時に自動で開始",
                                         "画面共有 開始 / 停止のショートカット",
                                         "プレビューから選ぶのショートカット",
                                         "出力ウィンドウを表示のショートカット",
                                         "出力ウィンドウの非表示モードをトグルのショートカット",
                                         "デフォルトに戻す"};
    settle();
    button("デフォルトに戻す").setFocus();
    std::vector<std::string> found;
    for (std::size_t step = 0; step < order.size(); ++step)
        found.push_back(nameOf(tab()));
    EXPECT_EQ(found, order);
    // Recording takes the focus away; Tab comes back to where it was.
    record(1, 2, Qt::ControlModifier);
    EXPECT_EQ(nameOf(QApplication::focusWidget()), "nothing");
    EXPECT_EQ(nameOf(tab()), "プレビューから選ぶのショートカット");
}

TEST_F(SettingsWindowTest, RecordersIgnoreModifiersAloneAndKeepTheirKeyWhileItIsHeld) {
    open();
    recorder(0).performPress();
    press(recorder(0), 500, Qt::ControlModifier | Qt::MetaModifier);
    EXPECT_TRUE(recorder(0).logic().isRecording());
    QKeyEvent down(QEvent::KeyPress, 0, Qt::ControlModifier, 49, 0, 0);
    QApplication::sendEvent(&recorder(0), &down);
    EXPECT_FALSE(recorder(0).logic().isRecording());
    QKeyEvent repeated(QEvent::KeyPress, 0, Qt::NoModifier, 49, 0, 0, {}, true);
    QApplication::sendEvent(&recorder(0), &repeated);
    EXPECT_FALSE(recorder(0).logic().isRecording()) << "Space begins to record only anew";
}

TEST_F(SettingsWindowTest, RecordersAreOfTheirSizeAndSpeak) {
    open();
    EXPECT_EQ(recorder(1).size(), QSize(140, 26)) << "at 96 pixels an inch";
    auto* const spoken = QAccessible::queryAccessibleInterface(&recorder(1));
    ASSERT_NE(spoken, nullptr);
    EXPECT_EQ(spoken->role(), QAccessible::PushButton);
    EXPECT_EQ(spoken->text(QAccessible::Name).toStdString(), "プレビューから選ぶのショートカット");
    EXPECT_EQ(spoken->text(QAccessible::Value).toStdString(), "⌃⌘P、適用済み");
    EXPECT_EQ(spoken->text(QAccessible::Help).toStdString(),
              "SpaceまたはReturnで入力を開始し、Escapeで取り消します");
    auto* const actions = spoken->actionInterface();
    ASSERT_NE(actions, nullptr);
    actions->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(spoken->text(QAccessible::Value).toStdString(), "入力中");
}

TEST_F(SettingsWindowTest, IsOneWindowThatComesToTheFront) {
    open();
    auto* const first = window->widget();
    EXPECT_EQ(broughtToFront, 1);
    window->open();
    EXPECT_EQ(window->widget(), first);
    EXPECT_EQ(broughtToFront, 2);
    first->close();
    window->open();
    ASSERT_NE(window->widget(), nullptr);
    EXPECT_TRUE(window->widget()->isVisible());
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_NE(window->widget(), nullptr);
    EXPECT_TRUE(window->widget()->isVisible());
    settings->targetFPS.set(45);
    settle();
    EXPECT_TRUE(shows("フレームレート: 45 fps"));
}

} // namespace
} // namespace kestrove

#include "UI/SettingsView/SettingsWindow.h"
#include "Tests/Unit/UI/SettingsView/SettingsWindowFixture.h"

#include <QAccessible>
#include <QGroupBox>

namespace kestrove {
namespace {

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

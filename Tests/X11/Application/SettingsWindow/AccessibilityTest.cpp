#include "Tests/Support/Processes/FileContent.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/X11/Application/SettingsWindow/SettingsWindowFixture.h"

#include <filesystem>
#include <sstream>
#include <string>

namespace kestrove::test {
namespace {

namespace Keys = ServerKey;

class SettingsWindowAccessibility : public SettingsWindowFixture {
protected:
    /// All that has a name, in the order in which it is read.
    std::string readNamed() {
        std::istringstream told(read());
        std::string named;
        for (std::string line; std::getline(told, line);) {
            // Where it lies is last, and depends on fonts.
            if (line.find("||") != line.find('|'))
                named += line.substr(0, line.rfind('|')) + '\n';
        }
        return named;
    }
    /// A row whose key is in force.
    static std::string row(std::string_view action, std::string_view keys) {
        return "label|" + std::string(action) + "||enabled||\n" + recorder(action, keys, applied) +
               "SpaceまたはReturnで入力を開始し、Escapeで取り消します|focusable,enabled|"
               "Press,SetFocus|\n"
               "filler|適用済み||enabled||\n"
               "label|適用済み||enabled||\n";
    }
};

TEST_F(SettingsWindowAccessibility, TellsEveryElementInItsOrder) {
    open("kestrove.targetFPS=45\nkestrove.autoStart=false\nkestrove.alwaysOnTop=true\n");
    EXPECT_EQ(
        readNamed(),
        "frame|Kestrove 設定||enabled||\n"
        "panel|追従設定||enabled||\n"
        "label|モード||enabled||\n"
        "radio button|マウス位置（自動追従）|モード|focusable,enabled|Toggle,SetFocus|\n"
        "radio button|フォーカス中のアプリ（自動追従）|モード|focusable,enabled|"
        "Toggle,SetFocus|\n"
        "radio button|手動で選択|モード|checked,focusable,focused,enabled|Toggle,SetFocus|\n"
        "label|手動モードでは、メニューバーからディスプレイ／ウィンドウを直接選びます。"
        "||enabled||\n"
        "panel|出力||enabled||\n"
        "label|フレームレート: 45 fps||enabled||\n"
        "spin button|フレームレート: 45 fps||focusable,enabled|SetFocus,Increase,Decrease|"
        "15..45..60\n"
        "check box|出力ウィンドウを常に最前面に表示||checked,focusable,enabled|"
        "Toggle,SetFocus|\n"
        "check box|出力ウィンドウを自分のデスクトップから隠す||focusable,enabled|"
        "Toggle,SetFocus|\n"
        "label|有効にすると出力ウィンドウを画面外へ移動します。Meet / "
        "Zoomの共有候補と既存共有を維持できるかは現在実機確認中です。||enabled||\n"
        "panel|起動||enabled||\n"
        "check box|アプリ起動時に自動で開始||focusable,enabled|Toggle,SetFocus|\n"
        "panel|グローバルショートカット||enabled||\n" +
            row(startStop, "⌃⌘S") + row(showPicker, "⌃⌘P") + row(showWindow, "⌃⌘W") +
            row(hideToggle, "⌃⌘H") +
            "filler|グローバルショートカット 4件を登録済み||enabled||\n"
            "label|グローバルショートカット 4件を登録済み||enabled||\n"
            "label|クリックまたは Space / Return で入力を開始します。通常キーは修飾キーが必要です。"
            "F1〜F15は単独でも設定できます。Escape でキャンセルします。||enabled||\n"
            "push button|デフォルトに戻す||focusable,enabled|Press,SetFocus|\n");
}

TEST_F(SettingsWindowAccessibility, AnnouncesWhatBecameOfAShortcut) {
    open();
    const auto heard = desktop.folder() / "heard";
    const auto listener = desktop.start(
        {"sh", "-c",
         "address=$(dbus-send --session --print-reply=literal --dest=org.a11y.Bus /org/a11y/bus "
         "org.a11y.Bus.GetAddress | tr -d ' ') && "
         "exec dbus-monitor --address \"$address\" \"member='Announcement'\" > \"$0\"",
         heard.string()});
    const auto hears = [&](const std::string& text) {
        return waitUntil([&] {
            return std::filesystem::exists(heard) &&
                   contentOf(heard).find(text) != std::string::npos;
        });
    };
    // What it says of its own connection: it listens.
    ASSERT_TRUE(hears("member=NameAcquired"));
    record(startStop, {Keys::control, Keys::super, Keys::p});
    EXPECT_TRUE(hears("string \"ほかの操作と重複しています\""));
    record(startStop, {Keys::control, Keys::super, Keys::d});
    EXPECT_TRUE(hears("string \"適用済み\""));
}

} // namespace
} // namespace kestrove::test

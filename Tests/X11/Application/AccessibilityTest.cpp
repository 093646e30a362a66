#include "Tests/Support/Processes/FileContent.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/KeyPresses.h"
#include "Tests/X11/Application/ApplicationFixture.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace kestrove::test {
namespace {

namespace Keys = ServerKey;

/// The program on a desktop with assistive technology.
class Accessibility : public ApplicationFixture {
protected:
    Accessibility()
        : ApplicationFixture(WindowManager::openbox, SessionBus::own) {
        start(std::vector<std::string>{"env", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1",
                                       KESTROVE_PROGRAM});
    }
    /// What a screen reader is told of the settings window, once it is there.
    std::string readSettings() {
        const auto file = desktop.folder() / "told";
        const auto isTold = [&] {
            const auto reader = desktop.start(
                {"/usr/bin/python3", KESTROVE_WINDOW_READER, "Kestrove 設定", file.string()});
            return reader->waitForExit(std::chrono::seconds(20)) && reader->exitCode() == 0;
        };
        EXPECT_TRUE(waitUntil(isTold));
        return std::filesystem::exists(file) ? contentOf(file) : std::string();
    }
};

TEST_F(Accessibility, TellsEveryControlOfTheSettings) {
    openMenuByKey();
    for (int count = 0; count < 3; ++count)
        pressTogether(desktop.connection(), {Keys::up});
    pressTogether(desktop.connection(), {Keys::returnKey});
    const auto told = readSettings();
    const auto recorder = [](const std::string& action, const std::string& keys) {
        return "push button|" + action + "のショートカット|" + keys +
               "、適用済み。SpaceまたはReturnで入力を開始し、Escapeで取り消します|"
               "focusable,enabled|Press,SetFocus|";
    };
    for (const std::string& line :
         {std::string("panel|追従設定|"), std::string("panel|出力|"), std::string("panel|起動|"),
          std::string("panel|グローバルショートカット|"),
          std::string("radio button|マウス位置（自動追従）|モード|checked,focusable,enabled|"),
          std::string("radio button|フォーカス中のアプリ（自動追従）|モード|focusable,enabled|"),
          std::string("radio button|手動で選択|モード|focusable,enabled|"),
          std::string("spin button|フレームレート: 30 fps||focusable,enabled|"
                      "SetFocus,Increase,Decrease|15..30..60"),
          std::string("check box|出力ウィンドウを常に最前面に表示||focusable,enabled|"),
          std::string("check box|出力ウィンドウを自分のデスクトップから隠す||focusable,enabled|"),
          std::string("check box|アプリ起動時に自動で開始||focusable,enabled|"),
          recorder("画面共有 開始 / 停止", "⌃⌘S"), recorder("プレビューから選ぶ", "⌃⌘P"),
          recorder("出力ウィンドウを表示", "⌃⌘W"),
          recorder("出力ウィンドウの非表示モードをトグル", "⌃⌘H"),
          std::string("push button|デフォルトに戻す||focusable,enabled|"),
          std::string("label|グローバルショートカット 4件を登録済み|")})
        EXPECT_NE(("\n" + told).find("\n" + line), std::string::npos) << line << "\nin\n" << told;
}

} // namespace
} // namespace kestrove::test

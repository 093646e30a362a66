#pragma once

#include "Tests/Support/TestWindow/TestWindow.h"
#include "Tests/Support/XServer/KeyPresses.h"
#include "Tests/X11/Application/ApplicationFixture.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrove::test {

/// The program on a desktop with assistive technology, by which the settings window, or another
/// one, is read: what a screen reader is told is what is expected of it.
class SettingsWindowFixture : public ApplicationFixture {
protected:
    /// `title` is that of the window that is read.
    explicit SettingsWindowFixture(const std::string& title = "Kestrove 設定");
    ~SettingsWindowFixture() override;

    /// Starts the program with these settings, which share the right display, and opens the window.
    void open(const std::string& settings = {});

    /// One line an element, in the order of the window: "role|name|description|states|actions|
    /// value". Empty while there is no such window.
    [[nodiscard]] std::string read();
    /// Waits until every one of these is the beginning of a line, and until none of `absent` is.
    [[nodiscard]] testing::AssertionResult tells(const std::vector<std::string>& lines,
                                                 const std::vector<std::string>& absent = {});
    /// Waits until the element of this name has the focus.
    [[nodiscard]] testing::AssertionResult isFocused(std::string_view name);

    /// How a recorder's line begins: what it is called, what it shows, what stands in its row.
    [[nodiscard]] static std::string recorder(std::string_view action, std::string_view keys,
                                              std::string_view status);
    /// How the line of a recorder begins that is recording.
    [[nodiscard]] static std::string recording(std::string_view action);

    /// Keys for whoever has the focus, or a grab.
    void press(const std::vector<xcb_keycode_t>& keys);
    void pressControlSuper(xcb_keycode_t key);
    /// Tab until the element of this name has the focus.
    void tabTo(std::string_view name);
    /// Records these keys in the recorder of this action.
    void record(std::string_view action, const std::vector<xcb_keycode_t>& keys);

    /// A window of another program has the focus.
    void focusOther();
    /// Its window goes, and the window manager gives the focus to the settings window.
    void closeOther();

    /// Another program has the key with Control and Super, or gives it back.
    void take(xcb_keycode_t key);
    void giveBack(xcb_keycode_t key);

    [[nodiscard]] testing::AssertionResult stores(std::string_view text);
    [[nodiscard]] std::string stored() const;

    static constexpr std::string_view startStop = "画面共有 開始 / 停止";
    static constexpr std::string_view showPicker = "プレビューから選ぶ";
    static constexpr std::string_view showWindow = "出力ウィンドウを表示";
    static constexpr std::string_view hideToggle = "出力ウィンドウの非表示モードをトグル";
    static constexpr std::string_view applied = "適用済み";
    static constexpr std::string_view notApplied = "未適用";
    static constexpr std::string_view refused =
        "macOSで登録できません。別の組み合わせを選んでください";
    static constexpr std::string_view duplicated = "ほかの操作と重複しています";

private:
    std::unique_ptr<ChildProcess> m_reader;
    int m_questions = -1; ///< the pipe that the reader listens to
    int m_questionCount = 0;
    std::optional<TestWindow> m_other;
};

} // namespace kestrove::test

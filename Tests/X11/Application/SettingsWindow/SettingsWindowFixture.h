#pragma once

#include "Tests/Support/TestWindow/TestWindow.h"
#include "Tests/Support/XServer/KeyPresses.h"
#include "Tests/X11/Application/ApplicationFixture.h"
#include "Tests/X11/Application/WindowReader.h"

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

    /// Starts the program with these settings, which share the right display, and opens the window.
    void open(const std::string& settings = {});

    /// See `WindowReader`.
    [[nodiscard]] std::string read() { return m_reader.read(); }
    [[nodiscard]] testing::AssertionResult tells(const std::vector<std::string>& lines,
                                                 const std::vector<std::string>& absent = {}) {
        return m_reader.tells(lines, absent);
    }
    [[nodiscard]] testing::AssertionResult isFocused(std::string_view name) {
        return m_reader.isFocused(name);
    }

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
    WindowReader m_reader;
    std::optional<TestWindow> m_other;
};

} // namespace kestrove::test

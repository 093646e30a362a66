#pragma once

#include "Desktop/Identifiers.h"
#include "Tests/Support/Processes/ChildProcess.h"
#include "Tests/Support/XServer/XDesktop.h"
#include "Tests/X11/Application/PaintedDisplay.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kestrove::test {

[[nodiscard]] bool isSame(const xcb_rectangle_t& one, const xcb_rectangle_t& other);

/// The program itself on a desktop of the test's own: two painted displays, the main one on the
/// left, where the output window opens in the middle.
class ApplicationFixture : public testing::Test {
protected:
    explicit ApplicationFixture(WindowManager manager = WindowManager::openbox,
                                SessionBus sessionBus = SessionBus::none);

    static constexpr xcb_rectangle_t leftPlace{0, 0, 640, 512};
    static constexpr xcb_rectangle_t rightPlace{640, 0, 1280, 800};

    /// What the settings file holds, e.g. "kestrove.autoStart=true\n".
    void writeSettings(std::string_view text);
    [[nodiscard]] std::filesystem::path settingsFile() const;
    /// A manual selection of this one monitor.
    [[nodiscard]] std::string onlyDisplay(std::string_view monitor);

    /// Starts the program and waits for its window. The settings are those that were written.
    void start();
    void start(std::string_view settings);
    void start(const std::vector<std::string>& command);
    [[nodiscard]] ChildProcess& program() { return *m_program; }
    [[nodiscard]] xcb_window_t window() const { return m_window; }

    /// Content of the output window, root pixels.
    [[nodiscard]] xcb_rectangle_t outputPlace() const;
    /// Where it is once it stays where it is.
    [[nodiscard]] xcb_rectangle_t settledPlace() const;
    /// What it shows now; empty while it is not shown, or a part of it is off the screen.
    [[nodiscard]] PixelImage output() const;
    [[nodiscard]] testing::AssertionResult shows(const PaintedDisplay& display,
                                                 std::string_view name);
    [[nodiscard]] testing::AssertionResult shows(const PixelImage& source, std::string_view name);
    [[nodiscard]] testing::AssertionResult showsPlaceholder(std::string_view name);

    /// As the user's hand on the window's edges does; of the size the content is meant, of the
    /// place the frame, where there is one.
    void placeOutput(const xcb_rectangle_t& place);
    /// Whether keys go to the output window.
    [[nodiscard]] bool hasFocus() const;
    /// Presses a key in the output window.
    void press(Key key);
    /// Opens the context menu by the right button, by the key for it, or as on keyboards without.
    void openMenuByMouse();
    void openMenuByKey();
    void openMenuByShiftF10();
    /// Chooses the entry of this number, from 1, of the open menu; those that only say something do
    /// not count.
    void chooseFromMenu(int entry);
    /// The same from the end: 1 is the last one.
    void chooseFromMenuEnd(int entry);
    [[nodiscard]] bool isMenuOpen() const;
    /// The window that is shown with this title; 0 while there is none.
    [[nodiscard]] xcb_window_t find(std::string_view title) const;
    /// The window that the program's other connection to the server draws the frames in; 0 while
    /// there is none.
    [[nodiscard]] xcb_window_t frameWindow() const;

    [[nodiscard]] testing::AssertionResult endsWith(int exitCode);

    /// The title of a window of anybody's; empty when it has none.
    [[nodiscard]] std::string titleOf(xcb_window_t window) const;
    /// A window on the screen with such a title; 0 when there is none.
    [[nodiscard]] xcb_window_t
    findTitled(const std::function<bool(std::string_view)>& isMeant) const;

    /// What else has to go on while the program starts, e.g. a service that answers it.
    std::function<void()> meanwhile;

    XDesktop desktop;
    XServer& server = desktop.server();
    PaintedDisplay left;
    PaintedDisplay right;

private:
    void choose(Key direction, int steps);
    [[nodiscard]] bool isKeyboardTaken() const;
    [[nodiscard]] bool isViewable(xcb_window_t window) const;
    [[nodiscard]] std::vector<xcb_window_t> children(xcb_window_t window) const;
    [[nodiscard]] bool isOfSameClient(xcb_window_t one, xcb_window_t other) const;

    std::unique_ptr<ChildProcess> m_program;
    xcb_window_t m_window = XCB_WINDOW_NONE;
};

} // namespace kestrove::test

#pragma once

#include "Tests/Support/Processes/ChildProcess.h"
#include "Tests/Support/XServer/XDesktop.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace kestrove::test {

/// What assistive technology is told of one window of the program, which has to be started with
/// QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 on a desktop with a session bus.
class WindowReader {
public:
    /// `title` is that of the window.
    WindowReader(XDesktop& desktop, const std::string& title);
    ~WindowReader();
    WindowReader(const WindowReader&) = delete;
    WindowReader& operator=(const WindowReader&) = delete;

    /// One line an element, in the order of the window: "role|name|description|states|actions|
    /// value|place", the place being what is seen of it. Empty while there is no such window.
    [[nodiscard]] std::string read();
    /// Waits until every one of these is the beginning of a line, and until none of `absent` is.
    [[nodiscard]] testing::AssertionResult tells(const std::vector<std::string>& lines,
                                                 const std::vector<std::string>& absent = {});
    /// Waits until the element of this name has the focus.
    [[nodiscard]] testing::AssertionResult isFocused(std::string_view name);

    /// Of what was read, the name of the element with the focus; empty when none has it.
    [[nodiscard]] static std::string focusedName(const std::string& told);
    /// Of what was read, what is seen of the first element whose line begins so, in root pixels;
    /// absent when that is nothing.
    [[nodiscard]] static std::optional<xcb_rectangle_t> placeOf(const std::string& told,
                                                                const std::string& beginning);

private:
    XDesktop& m_desktop;
    std::unique_ptr<ChildProcess> m_reader;
    int m_questions = -1; ///< the pipe that the reader listens to
    int m_questionCount = 0;
};

} // namespace kestrove::test

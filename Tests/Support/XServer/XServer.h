#pragma once

#include "Tests/Support/Processes/ChildProcess.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <xcb/xcb.h>

namespace kestrove::test {

/// A RandR monitor in pixels of the root window.
struct Monitor {
    std::string name;
    xcb_rectangle_t geometry;
};

/// Keys by the symbol that X has on them.
enum class Key : xcb_keysym_t {
    space = 0x20,
    returnKey = 0xff0d,
    escape = 0xff1b,
    up = 0xff52,
    down = 0xff54,
    menu = 0xff67,
    f10 = 0xffc7,
    shift = 0xffe1,
};

/// Two displays side by side, as on a desk.
[[nodiscard]] std::vector<Monitor> twoMonitors();

/// An X server of the test's own (Xvfb) on a number that the server itself finds free, with the
/// monitors asked for; its root window is their bounding box, depth 24. One connection to it is
/// open for the fixture. Ends the test program when the server does not start.
class XServer {
public:
    /// `logs` is an existing folder: Xvfb.log goes there. `monitors` holds at least one.
    XServer(const std::filesystem::path& logs, const std::vector<Monitor>& monitors);
    ~XServer();
    XServer(const XServer&) = delete;
    XServer& operator=(const XServer&) = delete;

    /// As DISPLAY wants it, e.g. ":7".
    [[nodiscard]] const std::string& displayName() const { return m_displayName; }
    [[nodiscard]] xcb_connection_t* connection() const { return m_connection; }
    [[nodiscard]] xcb_screen_t* screen() const { return m_screen; }
    [[nodiscard]] xcb_window_t root() const { return m_screen->root; }
    [[nodiscard]] xcb_atom_t atom(std::string_view name) const;
    [[nodiscard]] bool hasProperty(xcb_window_t window, std::string_view name) const;
    /// The first 32-bit item of a property of `window`; 0 when there is none.
    [[nodiscard]] std::uint32_t propertyItem(xcb_window_t window, std::string_view name) const;

    /// A display is plugged in (or changes its place: same name), a display is pulled out.
    void setMonitor(const Monitor& monitor);
    /// Not the last one.
    void removeMonitor(std::string_view name);

    /// The pointer as a mouse moves it (XTEST), in root pixels. A program's own warp would make no
    /// raw motion events, which is what followers of the pointer listen to.
    void movePointer(int x, int y);
    /// A click where the pointer is: 1 is the left button, 3 the right one.
    void click(std::uint8_t button);
    /// A key goes down and up, without modifiers, for whoever has the focus or a grab.
    void press(Key key);
    /// The same while `modifier` is held.
    void press(Key modifier, Key key);

    /// What a crash of the server is to its clients. The fixture's own connection is gone too.
    void kill();
    [[nodiscard]] ChildProcess& process() { return *m_process; }

private:
    void sendMonitor(const Monitor& monitor);
    void sendKey(std::uint8_t type, Key key);
    [[nodiscard]] xcb_keycode_t keyCode(Key key) const;

    std::unique_ptr<ChildProcess> m_process;
    std::string m_displayName;
    xcb_connection_t* m_connection = nullptr;
    xcb_screen_t* m_screen = nullptr;
    /// What the server has been told; never empty. The server's one real output belongs to the
    /// first: of an output that no monitor names the server would make one more.
    std::vector<Monitor> m_monitors;
};

} // namespace kestrove::test

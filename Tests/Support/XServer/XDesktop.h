#pragma once

#include "Tests/Support/Processes/ChildProcess.h"
#include "Tests/Support/Processes/TemporaryFolder.h"
#include "Tests/Support/XServer/XServer.h"

#include <memory>
#include <string>
#include <vector>

namespace kestrove::test {

enum class WindowManager { none, openbox, xfwm4, metacity, mutter, kwin, i3 };
enum class Compositor { none, picom };
enum class SessionBus { none, own };

/// A whole X desktop of the test's own: server, monitors and, when wanted, a window manager, a
/// compositor and a D-Bus session bus. It is ready when the constructor returns. All of it ends
/// with the object; when the running test has failed by then, every program's log is printed.
class XDesktop {
public:
    struct Options {
        std::vector<Monitor> monitors = twoMonitors();
        WindowManager windowManager = WindowManager::none;
        Compositor compositor = Compositor::none;
        SessionBus sessionBus =
            SessionBus::none; ///< a window manager brings one, some do not start without
    };

    XDesktop()
        : XDesktop(Options{}) {}
    explicit XDesktop(const Options& options);
    ~XDesktop();
    XDesktop(const XDesktop&) = delete;
    XDesktop& operator=(const XDesktop&) = delete;

    [[nodiscard]] XServer& server() { return m_server; }
    [[nodiscard]] const std::string& displayName() const { return m_server.displayName(); }
    [[nodiscard]] xcb_connection_t* connection() const { return m_server.connection(); }
    [[nodiscard]] xcb_window_t root() const { return m_server.root(); }
    /// Empty without a bus.
    [[nodiscard]] const std::string& sessionBusAddress() const { return m_busAddress; }
    /// A folder that goes with the desktop; also every program's home and configuration folder.
    [[nodiscard]] const std::filesystem::path& folder() const { return m_folder.path(); }
    /// KEY=VALUE: what leads a program to this desktop and to no other.
    [[nodiscard]] std::vector<std::string> environment() const;

    /// A program on this desktop; its log is FOLDER/PROGRAM-N.log.
    [[nodiscard]] std::unique_ptr<ChildProcess> start(const std::vector<std::string>& command);

    /// Each returns when the program does its work: the window manager answers, the compositing
    /// selection has an owner. Stopping what does not run does nothing.
    void startWindowManager(WindowManager manager);
    void stopWindowManager();
    void startCompositor();
    void stopCompositor();
    /// Whoever is connected to the session bus loses it, for good.
    void stopSessionBus();

private:
    void startSessionBus();
    [[nodiscard]] bool hasWindowManager() const;
    [[nodiscard]] bool hasCompositor() const;
    [[nodiscard]] bool redirectsWindows() const;
    void waitForProgram(ChildProcess& program, bool (XDesktop::*isReady)() const);
    void printLogs() const;

    /// Whether the window manager knows _NET_REQUEST_FRAME_EXTENTS.
    enum class AnswersAboutFrames : std::uint8_t { no, yes };

    TemporaryFolder m_folder;
    XServer m_server;
    int m_logCount = 0;
    AnswersAboutFrames m_answersAboutFrames = AnswersAboutFrames::yes;
    xcb_window_t m_probe =
        XCB_WINDOW_NONE; ///< never mapped; window managers answer questions on it
    std::string m_busAddress;
    std::unique_ptr<ChildProcess> m_bus;
    std::unique_ptr<ChildProcess> m_windowManager;
    std::unique_ptr<ChildProcess> m_compositor;
};

} // namespace kestrove::test

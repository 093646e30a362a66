#pragma once

#include "Platform/X11/Capture/X11DisplayLayer.h"
#include "Platform/X11/Capture/X11ScreenCapture.h"
#include "Platform/X11/HotKeys/X11HotKeys.h"
#include "Platform/X11/Pointer.h"
#include "Platform/X11/ScreenRecordingAccess.h"
#include "Platform/X11/Screens/Screens.h"
#include "Platform/X11/WindowServer.h"
#include "Platform/X11/Workspace/Workspace.h"
#include "Tests/Contract/DesktopUnderTest.h"
#include "Tests/Support/MessageBus/ServedSession.h"
#include "Tests/Support/PollMainLoop/PollMainLoop.h"
#include "Tests/Support/TestWindow/TestWindow.h"
#include "Tests/Support/XServer/XDesktop.h"

#include <map>
#include <memory>
#include <string>

namespace kestrove::contract {

/// A real X server with openbox under the contract. Applications are processes that do nothing;
/// their windows are the test's own and name them.
class X11DesktopUnderTest final : public DesktopUnderTest {
public:
    X11DesktopUnderTest();
    ~X11DesktopUnderTest() override;

    MainLoop& loop() override { return m_loop; }
    ScreenCapture& screenCapture() override { return m_capture; }
    std::unique_ptr<DisplayLayer> makeDisplayLayer() override;
    WindowServer& windowServer() override { return m_windowServer; }
    Workspace& workspace() override { return m_workspace; }
    Screens& screens() override { return m_screens; }
    Pointer& pointer() override { return m_pointer; }
    HotKeys& hotKeys() override { return m_hotKeys; }
    ScreenRecordingAccess& screenRecordingAccess() override { return m_access; }

    bool waitUntil(const std::function<bool()>& condition) override;
    void settle() override;

    void unplugSecondDisplay() override;
    void plugSecondDisplay() override;
    ProcessID ownProcess() override;
    ProcessID startApplication(const std::string& name) override;
    void endApplication(ProcessID process) override;
    WindowID openWindow(const NewWindow& window) override;
    void closeWindow(WindowID window) override;
    void moveWindow(WindowID window, Rect frame) override;
    void raiseWindow(WindowID window) override;
    void setTitle(WindowID window, const std::string& title) override;
    void paintWindow(WindowID window, Color color) override;
    void hideWindow(WindowID window) override;
    void focusWindow(WindowID window) override;
    void focusNothing() override;
    void movePointer(Point to) override;
    void pressKey(std::uint32_t keyCode, std::uint32_t modifiers) override;
    void holdKey(std::uint32_t keyCode, std::uint32_t modifiers) override;
    void takeHotKeyByOtherProgram(std::uint32_t keyCode, std::uint32_t modifiers) override;
    void lockSession() override { services().setLockedHint(true); }
    void unlockSession() override { services().setLockedHint(false); }
    void sleepScreens() override { services().sendPrepareForSleep(true); }
    void wakeScreens() override { services().sendPrepareForSleep(false); }
    NativeViewHandle makeView(Size pixels) override;
    void destroyView(NativeViewHandle view) override;
    Color colorInView(NativeViewHandle view, Point pixel) override;

private:
    struct Application {
        std::string name;
        std::unique_ptr<test::ChildProcess> program;
    };
    struct OpenWindow {
        ProcessID process;
        std::unique_ptr<test::TestWindow> window;
    };

    /// The services of a session, on buses of their own, from the first question on.
    test::MockLogind& services();
    void tellWindowManager(WindowID window, std::string_view type, std::uint32_t value);

    test::XDesktop m_desktop;
    PollMainLoop m_loop;
    std::unique_ptr<x11::Connection> m_connection;
    x11::MonitorLayout m_layout;
    x11::RawMotion m_motion;
    x11::Applications m_applications;
    x11::Screens m_screens;
    x11::Pointer m_pointer;
    x11::WindowServer m_windowServer;
    SessionSignals m_session;
    x11::Workspace m_workspace;
    x11::ScreenRecordingAccess m_access;
    x11::X11ScreenCapture m_capture;
    x11::X11HotKeys m_hotKeys;
    std::unique_ptr<test::ServedSession> m_servedSession;
    std::map<ProcessID, Application> m_running;
    std::map<WindowID, OpenWindow> m_windows;
    std::map<NativeViewHandle, std::unique_ptr<test::TestWindow>> m_views;
};

} // namespace kestrove::contract

#pragma once

#include "Platform/Simulated/SimulatedPlatform.h"
#include "Tests/Contract/DesktopUnderTest.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace kestrove::contract {

/// The simulated desktop under the contract.
class SimulatedDesktopUnderTest final : public DesktopUnderTest {
public:
    SimulatedDesktopUnderTest();

    MainLoop& loop() override { return m_platform.loop; }
    ScreenCapture& screenCapture() override { return m_platform.screenCapture; }
    std::unique_ptr<DisplayLayer> makeDisplayLayer() override;
    WindowServer& windowServer() override { return m_platform.windowServer; }
    Workspace& workspace() override { return m_platform.workspace; }
    Screens& screens() override { return m_platform.screens; }
    Pointer& pointer() override { return m_platform.pointer; }
    HotKeys& hotKeys() override { return m_platform.hotKeys; }
    Application& application() override { return m_platform.application; }
    ScreenRecordingAccess& screenRecordingAccess() override {
        return m_platform.screenRecordingAccess;
    }
    SystemLog& systemLog() override { return m_platform.systemLog; }
    std::unique_ptr<UserDefaults> openUserDefaults() override;

    bool waitUntil(const std::function<bool()>& condition) override;
    void settle() override { m_platform.loop.advance(Seconds(120)); }

    void unplugSecondDisplay() override;
    void plugSecondDisplay() override;
    ProcessID ownProcess() override { return m_platform.desktop.ownProcess(); }
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
    void lockSession() override { m_platform.desktop.resignSession(); }
    void unlockSession() override { m_platform.desktop.becomeSession(); }
    void sleepScreens() override { m_platform.desktop.sleepScreens(); }
    void wakeScreens() override { m_platform.desktop.wakeScreens(); }
    bool hasRecordingPermission() override { return true; }
    void withdrawRecordingPermission() override;
    void pressKey(std::uint32_t keyCode, std::uint32_t modifiers) override;
    void holdKey(std::uint32_t keyCode, std::uint32_t modifiers) override;
    void takeHotKeyByOtherProgram(std::uint32_t keyCode, std::uint32_t modifiers) override;
    NativeViewHandle makeView(Size pixels) override;
    void destroyView(NativeViewHandle view) override;
    Color colorInView(NativeViewHandle view, Point pixel) override;
    std::vector<std::string> readLog() override { return m_platform.systemLog.texts(); }

private:
    SimulatedPlatform m_platform;
    std::map<NativeViewHandle, Size> m_viewSizes;
};

} // namespace kestrove::contract

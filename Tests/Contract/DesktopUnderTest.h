#pragma once

#include "Async/MainLoop.h"
#include "Desktop/Application.h"
#include "Desktop/DisplayLayer.h"
#include "Desktop/HotKeys.h"
#include "Desktop/Pointer.h"
#include "Desktop/ScreenCapture.h"
#include "Desktop/ScreenRecordingAccess.h"
#include "Desktop/Screens.h"
#include "Desktop/SystemLog.h"
#include "Desktop/UserDefaults.h"
#include "Desktop/WindowServer.h"
#include "Desktop/Workspace.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kestrove::contract {

/// 0 to 255 each.
struct Color {
    int red = 0;
    int green = 0;
    int blue = 0;

    bool operator==(const Color&) const = default;
};

enum class WindowKind {
    normal,
    /// A menu, a tooltip: never on layer 0.
    popup,
};

struct NewWindow {
    /// `startApplication` or `ownProcess` gave it.
    ProcessID processID = 0;
    std::string title = "window";
    /// Points, window server coordinates.
    Rect frame{100, 100, 400, 300};
    Color color{200, 40, 40};
    WindowKind kind = WindowKind::normal;
};

/// A desktop that the contract suites run against: the seam's adapters over it, and hands to change
/// the desktop with, the way its user and other programs do.
///
/// To run the suites against another platform:
///  1. Implement this class in `Tests/Contract/NAME/`. It is made anew for every test and starts
///     with two displays side by side, the main one on the left, each at least 800 by 600 points;
///     without windows on layer 0 and without focus; unlocked, recording allowed; the pointer on
///     the main display.
///  2. In the same folder, instantiate the suites (`ContractSuites.h`) with a `DesktopFactory`:
///     `INSTANTIATE_TEST_SUITE_P(NAME, ScreensContract, testing::Values(factory), nameOf);`
///     A suite whose adapter the platform does not have is named in
///     `GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST`, with the reason; the test program fails
///     otherwise. The accessors of adapters that no instantiated suite uses need not be overridden.
///  3. Add `kestrove_contract(NAME FOLDERS ...)` to `Tests/CMakeLists.txt`.
///
/// A function that changes the desktop returns when the change was made; the adapters may learn of
/// it later. Suites wait for what they expect with `waitUntil`, never for a length of time.
///
/// Thread: main.
class DesktopUnderTest {
public:
    DesktopUnderTest() = default;
    DesktopUnderTest(const DesktopUnderTest&) = delete;
    DesktopUnderTest& operator=(const DesktopUnderTest&) = delete;
    virtual ~DesktopUnderTest() = default;

    // The seam. The defaults end the process.
    virtual MainLoop& loop() = 0;
    virtual ScreenCapture& screenCapture();
    virtual std::unique_ptr<DisplayLayer> makeDisplayLayer();
    virtual WindowServer& windowServer();
    virtual Workspace& workspace();
    virtual Screens& screens();
    virtual Pointer& pointer();
    virtual HotKeys& hotKeys();
    virtual Application& application();
    virtual ScreenRecordingAccess& screenRecordingAccess();
    virtual SystemLog& systemLog();
    /// One over the same store each time: what another run of the program sees.
    virtual std::unique_ptr<UserDefaults> openUserDefaults();

    /// Runs the loop until `condition` holds: by moving a virtual clock, or for real against a
    /// deadline. Returns whether it came to hold.
    [[nodiscard]] virtual bool waitUntil(const std::function<bool()>& condition) = 0;
    /// Runs the loop until everything that earlier changes have led to has arrived, to show that
    /// nothing else happens. A virtual clock moves by minutes here.
    virtual void settle() = 0;

    // Displays.
    virtual void unplugSecondDisplay();
    /// The same display comes back at the same place.
    virtual void plugSecondDisplay();

    // Applications and windows.
    virtual ProcessID ownProcess();
    /// A running program of this name that has no windows yet.
    virtual ProcessID startApplication(const std::string& name);
    /// However it ends, its windows go too.
    virtual void endApplication(ProcessID process);
    /// In front of all others; does not take the focus.
    virtual WindowID openWindow(const NewWindow& window);
    virtual void closeWindow(WindowID window);
    virtual void moveWindow(WindowID window, Rect frame);
    virtual void raiseWindow(WindowID window);
    virtual void setTitle(WindowID window, const std::string& title);
    virtual void paintWindow(WindowID window, Color color);
    /// Takes the window off the screen without closing it, as minimising does.
    virtual void hideWindow(WindowID window);
    virtual void focusWindow(WindowID window);
    virtual void focusNothing();

    /// Points, screen coordinates.
    virtual void movePointer(Point to);

    // The session.
    virtual void lockSession();
    virtual void unlockSession();
    virtual void sleepScreens();
    virtual void wakeScreens();

    /// Whether the desktop knows a permission to record the screen that can be withdrawn.
    virtual bool hasRecordingPermission();
    virtual void withdrawRecordingPermission();

    // The keyboard.
    virtual void pressKey(std::uint32_t keyCode, std::uint32_t modifiers);
    /// Holds it down for as long as a keyboard repeats it, and lets go.
    virtual void holdKey(std::uint32_t keyCode, std::uint32_t modifiers);
    virtual void takeHotKeyByOtherProgram(std::uint32_t keyCode, std::uint32_t modifiers);

    // Views to show layers in.
    virtual NativeViewHandle makeView(Size pixels);
    virtual void destroyView(NativeViewHandle view);
    /// What is seen in the view; pixels from its top left.
    virtual Color colorInView(NativeViewHandle view, Point pixel);

    /// The lines of the system log that this program wrote, oldest first.
    virtual std::vector<std::string> readLog();
};

/// Makes the desktop of one test.
struct DesktopFactory {
    std::string name;
    std::function<std::unique_ptr<DesktopUnderTest>()> make;
};

} // namespace kestrove::contract

#include "Tests/Contract/DesktopUnderTest.h"

#include <cstdio>
#include <cstdlib>

namespace kestrove::contract {

namespace {

[[noreturn]] void missing(const char* what) {
    std::fprintf(stderr, "this desktop under test has no %s\n", what);
    std::abort();
}

} // namespace

ScreenCapture& DesktopUnderTest::screenCapture() {
    missing("screen capture");
}
std::unique_ptr<DisplayLayer> DesktopUnderTest::makeDisplayLayer() {
    missing("display layer");
}
WindowServer& DesktopUnderTest::windowServer() {
    missing("window server");
}
Workspace& DesktopUnderTest::workspace() {
    missing("workspace");
}
Screens& DesktopUnderTest::screens() {
    missing("screens");
}
Pointer& DesktopUnderTest::pointer() {
    missing("pointer");
}
HotKeys& DesktopUnderTest::hotKeys() {
    missing("hot keys");
}
Application& DesktopUnderTest::application() {
    missing("application");
}
ScreenRecordingAccess& DesktopUnderTest::screenRecordingAccess() {
    missing("screen recording access");
}
SystemLog& DesktopUnderTest::systemLog() {
    missing("system log");
}
std::unique_ptr<UserDefaults> DesktopUnderTest::openUserDefaults() {
    missing("user defaults");
}
void DesktopUnderTest::unplugSecondDisplay() {
    missing("display to unplug");
}
void DesktopUnderTest::plugSecondDisplay() {
    missing("display to plug in");
}
ProcessID DesktopUnderTest::ownProcess() {
    missing("process of its own");
}
ProcessID DesktopUnderTest::startApplication(const std::string& /*name*/) {
    missing("applications");
}
void DesktopUnderTest::endApplication(ProcessID /*process*/) {
    missing("applications");
}
WindowID DesktopUnderTest::openWindow(const NewWindow& /*window*/) {
    missing("windows");
}
void DesktopUnderTest::closeWindow(WindowID /*window*/) {
    missing("windows");
}
void DesktopUnderTest::moveWindow(WindowID /*window*/, Rect /*frame*/) {
    missing("windows");
}
void DesktopUnderTest::raiseWindow(WindowID /*window*/) {
    missing("windows");
}
void DesktopUnderTest::setTitle(WindowID /*window*/, const std::string& /*title*/) {
    missing("windows");
}
void DesktopUnderTest::paintWindow(WindowID /*window*/, Color /*color*/) {
    missing("windows");
}
void DesktopUnderTest::hideWindow(WindowID /*window*/) {
    missing("windows");
}
void DesktopUnderTest::focusWindow(WindowID /*window*/) {
    missing("windows");
}
void DesktopUnderTest::focusNothing() {
    missing("focus");
}
void DesktopUnderTest::movePointer(Point /*to*/) {
    missing("pointer to move");
}
void DesktopUnderTest::lockSession() {
    missing("session");
}
void DesktopUnderTest::unlockSession() {
    missing("session");
}
void DesktopUnderTest::sleepScreens() {
    missing("session");
}
void DesktopUnderTest::wakeScreens() {
    missing("session");
}
bool DesktopUnderTest::hasRecordingPermission() {
    return false;
}
void DesktopUnderTest::withdrawRecordingPermission() {
    missing("permission");
}
void DesktopUnderTest::pressKey(std::uint32_t /*keyCode*/, std::uint32_t /*modifiers*/) {
    missing("keyboard");
}
void DesktopUnderTest::holdKey(std::uint32_t /*keyCode*/, std::uint32_t /*modifiers*/) {
    missing("keyboard");
}
void DesktopUnderTest::takeHotKeyByOtherProgram(std::uint32_t /*keyCode*/,
                                                std::uint32_t /*modifiers*/) {
    missing("keyboard");
}
NativeViewHandle DesktopUnderTest::makeView(Size /*pixels*/) {
    missing("views");
}
void DesktopUnderTest::destroyView(NativeViewHandle /*view*/) {
    missing("views");
}
Color DesktopUnderTest::colorInView(NativeViewHandle /*view*/, Point /*pixel*/) {
    missing("views");
}
std::vector<std::string> DesktopUnderTest::readLog() {
    missing("log to read");
}

} // namespace kestrove::contract

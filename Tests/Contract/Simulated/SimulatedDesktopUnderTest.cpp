#include "Tests/Contract/Simulated/SimulatedDesktopUnderTest.h"

#include <algorithm>

namespace kestrove::contract {

namespace {

SimulatedColor simulated(Color color) {
    return {static_cast<std::uint8_t>(color.red), static_cast<std::uint8_t>(color.green),
            static_cast<std::uint8_t>(color.blue)};
}

SimulatedDisplay secondDisplay() {
    return {.displayID = 2,
            .frame = {1440, -180, 1920, 1080},
            .visibleFrame = Rect{1440, -180, 1920, 1056},
            .scale = 1,
            .name = "Second"};
}

} // namespace

SimulatedDesktopUnderTest::SimulatedDesktopUnderTest() {
    m_platform.desktop.addDisplay(
        {.displayID = 1, .frame = {0, 0, 1440, 900}, .scale = 2, .name = "Main"});
    m_platform.desktop.addDisplay(secondDisplay());
    m_platform.desktop.movePointer({700, 400});
    m_platform.loop.runUntilIdle();
}

std::unique_ptr<DisplayLayer> SimulatedDesktopUnderTest::makeDisplayLayer() {
    return std::make_unique<SimulatedDisplayLayer>(m_platform.desktop);
}

std::unique_ptr<UserDefaults> SimulatedDesktopUnderTest::openUserDefaults() {
    return std::make_unique<SimulatedUserDefaults>(m_platform.desktop);
}

bool SimulatedDesktopUnderTest::waitUntil(const std::function<bool()>& condition) {
    m_platform.loop.runUntilIdle();
    // A minute of virtual time in steps that are shorter than anything the suites wait for.
    for (int step = 0; step < 6000 && !condition(); ++step)
        m_platform.loop.advance(Seconds(0.01));
    return condition();
}

void SimulatedDesktopUnderTest::unplugSecondDisplay() {
    m_platform.desktop.removeDisplay(2);
}

void SimulatedDesktopUnderTest::plugSecondDisplay() {
    m_platform.desktop.addDisplay(secondDisplay());
}

ProcessID SimulatedDesktopUnderTest::startApplication(const std::string& name) {
    return m_platform.desktop.launchApplication(
        {.bundleIdentifier = "org.example." + name, .name = name});
}

void SimulatedDesktopUnderTest::endApplication(ProcessID process) {
    m_platform.desktop.terminateApplication(process);
}

WindowID SimulatedDesktopUnderTest::openWindow(const NewWindow& window) {
    return m_platform.desktop.openWindow({.processID = window.processID,
                                          .layer = window.kind == WindowKind::popup ? 101 : 0,
                                          .title = window.title,
                                          .frame = window.frame,
                                          .color = simulated(window.color)});
}

void SimulatedDesktopUnderTest::closeWindow(WindowID window) {
    m_platform.desktop.closeWindow(window);
}

void SimulatedDesktopUnderTest::moveWindow(WindowID window, Rect frame) {
    m_platform.desktop.moveWindow(window, frame);
}

void SimulatedDesktopUnderTest::raiseWindow(WindowID window) {
    m_platform.desktop.raiseWindow(window);
}

void SimulatedDesktopUnderTest::setTitle(WindowID window, const std::string& title) {
    auto changed = *m_platform.desktop.findWindow(window);
    changed.title = title;
    m_platform.desktop.setWindow(changed);
}

void SimulatedDesktopUnderTest::paintWindow(WindowID window, Color color) {
    m_platform.desktop.paintWindow(window, simulated(color));
}

void SimulatedDesktopUnderTest::hideWindow(WindowID window) {
    auto changed = *m_platform.desktop.findWindow(window);
    changed.isOnScreen = false;
    m_platform.desktop.setWindow(changed);
}

void SimulatedDesktopUnderTest::focusWindow(WindowID window) {
    m_platform.desktop.activateApplication(m_platform.desktop.findWindow(window)->processID);
}

void SimulatedDesktopUnderTest::focusNothing() {
    m_platform.desktop.activateApplication(std::nullopt);
}

void SimulatedDesktopUnderTest::movePointer(Point to) {
    m_platform.desktop.movePointer(to);
}

void SimulatedDesktopUnderTest::withdrawRecordingPermission() {
    m_platform.desktop.setRecordingAllowed(false);
}

void SimulatedDesktopUnderTest::pressKey(std::uint32_t keyCode, std::uint32_t modifiers) {
    m_platform.desktop.keyboard().press({keyCode, modifiers});
}

void SimulatedDesktopUnderTest::holdKey(std::uint32_t keyCode, std::uint32_t modifiers) {
    for (int repeat = 0; repeat < 10; ++repeat)
        m_platform.desktop.keyboard().keyDown({keyCode, modifiers});
    m_platform.desktop.keyboard().keyUp({keyCode, modifiers});
}

void SimulatedDesktopUnderTest::takeHotKeyByOtherProgram(std::uint32_t keyCode,
                                                         std::uint32_t modifiers) {
    m_platform.desktop.keyboard().takeByOtherProgram({keyCode, modifiers});
}

NativeViewHandle SimulatedDesktopUnderTest::makeView(Size pixels) {
    const auto view = m_platform.desktop.views().makeView();
    m_viewSizes.emplace(view, pixels);
    return view;
}

void SimulatedDesktopUnderTest::destroyView(NativeViewHandle view) {
    m_platform.desktop.views().destroyView(view);
    m_viewSizes.erase(view);
}

Color SimulatedDesktopUnderTest::colorInView(NativeViewHandle view, Point pixel) {
    const auto color = m_platform.desktop.views().colorInView(view, m_viewSizes.at(view), pixel);
    return {color.red, color.green, color.blue};
}

} // namespace kestrove::contract

#pragma once

#include "App/KestroveApp.h"
#include "Platform/Qt/QtDescriptorWatching.h"
#include "Platform/Qt/QtMainLoop.h"
#include "Tests/Support/Processes/ChildProcess.h"
#include "Tests/Support/ScriptedDesktop/MemoryUserDefaults.h"
#include "Tests/Support/ScriptedDesktop/RecordingLog.h"
#include "Tests/Support/TestWindow/TestWindow.h"
#include "Tests/Support/XServer/XDesktop.h"
#include "Tests/X11/Sources/SteppedMainLoop.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace kestrove::test {

/// Another program with one window of one colour.
struct Program {
    std::unique_ptr<ChildProcess> process;
    std::unique_ptr<TestWindow> window;
    Color color;

    [[nodiscard]] CaptureSource source() const { return CaptureSource::window(window->id()); }
};

/// The whole application, wired as the program wires it, on a real desktop with two displays of a
/// colour each and openbox; only the clock is the test's own. The output window lies on top in the
/// left display, the pointer in its corner.
class SourcesFixture : public testing::Test {
public:
    /// The desktop of all tests. Called once, before the first.
    static void useDesktop(XDesktop& desktop) { s_desktop = &desktop; }
    ~SourcesFixture() override;

protected:
    static constexpr xcb_rectangle_t leftPlace{0, 0, 1280, 800};
    static constexpr xcb_rectangle_t rightPlace{1280, 0, 1280, 800};
    static constexpr Color leftColor = 0xff204080;
    static constexpr Color rightColor = 0xff806020;

    SourcesFixture();

    [[nodiscard]] static XDesktop& desktop() { return *s_desktop; }
    [[nodiscard]] static XServer& server() { return s_desktop->server(); }
    [[nodiscard]] AppController& controller() { return app->controller(); }
    [[nodiscard]] AppSettings& settings() { return app->settings(); }
    [[nodiscard]] static CaptureSource display(std::string_view name);

    /// Its window is ready, in front and has the focus.
    [[nodiscard]] Program startProgram(const std::string& name, const xcb_rectangle_t& place,
                                       Color color);
    /// As a click on the window does: to the front, with the focus.
    void activate(const Program& program);
    void minimise(const Program& program);
    /// The process dies, and with it its connection to the server.
    static void kill(Program& program);

    /// Ticks what the list of sources offers, as a click in the menu does.
    void tick(CaptureSource source);
    void tick(const std::vector<const Program*>& programs);

    /// Starts to share, and waits for it.
    void start();

    // These wait, letting the clock run.
    [[nodiscard]] testing::AssertionResult isActive(CaptureSource source);
    [[nodiscard]] testing::AssertionResult reaches(const CaptureSessionState& state);
    /// The middle of the output has this colour.
    [[nodiscard]] testing::AssertionResult shows(Color color);

    [[nodiscard]] Color colorNow() const;

    QtMainLoop events;
    SteppedMainLoop loop{events};
    QtDescriptorWatching watching;
    /// What is told of the user's session; nobody tells anything by himself.
    SessionSignals session;
    RecordingLog log;
    MemoryUserDefaults defaults;
    TestWindow leftFloor;
    TestWindow rightFloor;
    std::unique_ptr<X11Desktop> x11Desktop;
    std::unique_ptr<KestroveApp> app;

private:
    void tellWindowManager(xcb_window_t window, std::string_view message, std::uint32_t value);
    [[nodiscard]] static TestWindow::Options floorOptions(const xcb_rectangle_t& place,
                                                          Color color);

    static XDesktop* s_desktop;
};

} // namespace kestrove::test

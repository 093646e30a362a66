#include "Tests/X11/Sources/SourcesFixture.h"

#include "Tests/Support/PixelReader/PixelReader.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/Reply.h"

#include <QGuiApplication>

#include <algorithm>
#include <csignal>
#include <fmt/format.h>
#include <utility>

namespace kestrove::test {

XDesktop* SourcesFixture::s_desktop = nullptr;

namespace {

bool isInFront() {
    return QGuiApplication::applicationState() == Qt::ApplicationActive;
}

} // namespace

SourcesFixture::SourcesFixture()
    : leftFloor(desktop().displayName(), floorOptions(leftPlace, leftColor))
    , rightFloor(desktop().displayName(), floorOptions(rightPlace, rightColor)) {
    for (const auto* floor : {&leftFloor, &rightFloor}) {
        const std::uint32_t below = XCB_STACK_MODE_BELOW;
        xcb_configure_window(floor->connection(), floor->id(), XCB_CONFIG_WINDOW_STACK_MODE,
                             &below);
        sync(floor->connection());
    }
    server().movePointer(5, 5);
    auto opened = X11Desktop::open(loop, watching, session);
    if (!opened)
        giveUp(opened.error().description);
    x11Desktop = std::move(*opened);
    // Nothing covers it, whatever is raised.
    defaults.setBoolean("kestrove.alwaysOnTop", true);
    app = std::make_unique<KestroveApp>(KestroveGround{loop, log, defaults, *x11Desktop});
    app->delegate().applicationDidFinishLaunching();
    // Until then it cannot know that nobody has locked the screen.
    EXPECT_TRUE(loop.runUntil(isInFront));
}

SourcesFixture::~SourcesFixture() {
    if (HasFailure()) {
        for (const auto& line : log.lines)
            fmt::print(stderr, "log: {} {}\n", line.category, line.text);
        fmt::print(stderr, "at the end: state {}, virtual time {} s\n",
                   static_cast<int>(controller().sessionState().get().kind()), loop.now().count());
    }
    controller().stop();
    EXPECT_TRUE(loop.runUntil([this] { return !app->delegate().isSharing(); }));
    // Qt takes itself to be in front for good when its window goes while it is.
    const auto nobody = startProgram("nobody", {10, 10, 50, 50}, 0xff000000);
    EXPECT_TRUE(loop.runUntil([] { return !isInFront(); }));
    app.reset();
    server().setMonitor({"RIGHT", rightPlace});
}

TestWindow::Options SourcesFixture::floorOptions(const xcb_rectangle_t& place, Color color) {
    return {.geometry = place, .color = color, .overrideRedirect = true};
}

CaptureSource SourcesFixture::display(std::string_view name) {
    return CaptureSource::display(x11::displayIdentifier(name));
}

Program SourcesFixture::startProgram(const std::string& name, const xcb_rectangle_t& place,
                                     Color color) {
    Program program;
    program.process = desktop().start({"sleep", "1000"});
    program.color = color;
    program.window = std::make_unique<TestWindow>(
        desktop().displayName(),
        TestWindow::Options{.geometry = place,
                            .color = color,
                            .title = name,
                            .className = name,
                            .processIdentifier =
                                static_cast<std::uint32_t>(program.process->processIdentifier())});
    activate(program);
    return program;
}

void SourcesFixture::activate(const Program& program) {
    constexpr std::uint32_t fromAPager = 2;
    const auto ask = [&] {
        tellWindowManager(program.window->id(), "_NET_ACTIVE_WINDOW", fromAPager);
    };
    ask();
    // A window that was about to come to the front may do so only now; a user would then turn to
    // this one again.
    constexpr int enough = 20;
    int inARow = 0;
    EXPECT_TRUE(loop.spinUntil([&] {
        const bool isActive =
            server().propertyItem(desktop().root(), "_NET_ACTIVE_WINDOW") == program.window->id();
        if (!isActive && inARow > 0)
            ask();
        inARow = isActive ? inARow + 1 : 0;
        return inARow >= enough;
    }));
}

void SourcesFixture::minimise(const Program& program) {
    constexpr std::uint32_t iconic = 3;
    tellWindowManager(program.window->id(), "WM_CHANGE_STATE", iconic);
    EXPECT_TRUE(loop.spinUntil(
        [&] { return server().propertyItem(program.window->id(), "WM_STATE") == iconic; }));
}

void SourcesFixture::kill(Program& program) {
    program.process->signal(SIGKILL);
    program.window->disconnect();
}

void SourcesFixture::tellWindowManager(xcb_window_t window, std::string_view message,
                                       std::uint32_t value) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = server().atom(message);
    event.data.data32[0] = value;
    xcb_send_event(desktop().connection(), 0, desktop().root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(desktop().connection());
}

void SourcesFixture::tick(CaptureSource source) {
    const CaptureSourceInfo* offered = nullptr;
    const auto find = [&] {
        const auto& lists = controller().availableSources().get();
        for (const auto* list : {&lists.displays, &lists.windows}) {
            const auto found = std::ranges::find(*list, source, &CaptureSourceInfo::source);
            if (found != list->end())
                offered = &*found;
        }
        return offered != nullptr;
    };
    controller().scheduleSourceRefresh();
    ASSERT_TRUE(loop.runUntil(find)) << "it is not offered";
    const auto owner = offered->windowOwner;
    controller().toggleSource(source, owner);
}

void SourcesFixture::tick(const std::vector<const Program*>& programs) {
    for (const auto* program : programs)
        ASSERT_NO_FATAL_FAILURE(tick(program->source()));
}

void SourcesFixture::start() {
    controller().start();
    ASSERT_TRUE(reaches(CaptureSessionState::running()));
    // The output window comes to the front with the session: what a test activates next must not be
    // overtaken by that.
    ASSERT_TRUE(loop.spinUntil([this] {
        return server().propertyItem(desktop().root(), "_NET_ACTIVE_WINDOW") ==
               app->outputWindow().windowID();
    }));
}

testing::AssertionResult SourcesFixture::isActive(CaptureSource source) {
    if (loop.runUntil([&] { return controller().activeSource().get() == source; }))
        return testing::AssertionSuccess();
    const auto active = controller().activeSource().get();
    return testing::AssertionFailure()
           << (active ? fmt::format("another source: {:#x}", active->identifier()) : "no source");
}

testing::AssertionResult SourcesFixture::reaches(const CaptureSessionState& state) {
    if (loop.runUntil([&] { return controller().sessionState().get() == state; }))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << fmt::format(
               "another state: {}", static_cast<int>(controller().sessionState().get().kind()));
}

testing::AssertionResult SourcesFixture::shows(Color color) {
    if (loop.runUntil([&] { return colorNow() == color; }))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << fmt::format("{:#x} instead", colorNow());
}

Color SourcesFixture::colorNow() const {
    const auto window = app->outputWindow().windowID();
    if (!window)
        return 0;
    const Reply size(xcb_get_geometry_reply(
        desktop().connection(), xcb_get_geometry(desktop().connection(), *window), nullptr));
    if (!size)
        return 0;
    const auto middle = [](std::uint16_t length) { return static_cast<std::int16_t>(length / 2); };
    return readPixels(desktop().connection(), *window,
                      {middle(size->width), middle(size->height), 1, 1})
        .pixel(0, 0);
}

} // namespace kestrove::test

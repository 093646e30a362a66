#include "Tests/X11/Application/ApplicationFixture.h"

#include "Platform/X11/Connection.h"
#include "Platform/X11/Screens/MonitorLayout.h"
#include "Tests/Support/PixelReader/PixelReader.h"
#include "Tests/Support/PollMainLoop/PollMainLoop.h"
#include "Tests/Support/Processes/FileContent.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Application/Paths.h"
#include "Tests/X11/Application/Presentation.h"

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <vector>

#include <fmt/core.h>

namespace kestrove::test {

namespace {

constexpr int scalingTolerance = 3; ///< of a channel: passes of a filter round one after the other

/// mutter gives every opaque window a shadow, which falls on the display beside it.
std::uint8_t floorDepth(WindowManager manager) {
    return manager == WindowManager::mutter ? 32 : 24;
}

void expectWithin(const std::function<bool()>& condition, std::string_view what) {
    EXPECT_TRUE(waitUntil(condition)) << "gave up waiting for " << what;
}

} // namespace

bool isSame(const xcb_rectangle_t& one, const xcb_rectangle_t& other) {
    return one.x == other.x && one.y == other.y && one.width == other.width &&
           one.height == other.height;
}

ApplicationFixture::ApplicationFixture(WindowManager manager, SessionBus sessionBus)
    : desktop(XDesktop::Options{.monitors = {{"LEFT", leftPlace}, {"RIGHT", rightPlace}},
                                .windowManager = manager,
                                .sessionBus = sessionBus})
    , left(desktop, leftPlace, WindowFill::pattern, floorDepth(manager))
    , right(desktop, rightPlace, WindowFill::color, floorDepth(manager)) {
    left.paint({40, 400, 500, 90}, 0xffd02090);
    right.paint({100, 60, 333, 401}, 0xffe0e020);
    right.paint({700, 300, 401, 333}, 0xff20c040);
    server.movePointer(20, 20);
}

std::filesystem::path ApplicationFixture::settingsFile() const {
    return desktop.folder() / "kestrove" / "kestrove.conf";
}

void ApplicationFixture::writeSettings(std::string_view text) {
    std::filesystem::create_directories(settingsFile().parent_path());
    setContent(settingsFile(), text);
}

std::string ApplicationFixture::onlyDisplay(std::string_view monitor) {
    PollMainLoop loop;
    const auto connection = x11::Connection::open(loop, loop, desktop.displayName());
    EXPECT_TRUE(connection);
    const auto monitors = x11::readMonitors(**connection);
    const auto found = std::ranges::find(monitors, monitor, &x11::Monitor::name);
    EXPECT_NE(found, monitors.end());
    return fmt::format("kestrove.followMode=manual\n"
                       "kestrove.manualSources=[{{\"display\":{{\"_0\":{}}}}}]\n",
                       found->id);
}

void ApplicationFixture::start(std::string_view settings) {
    writeSettings(settings);
    start();
}

void ApplicationFixture::start() {
    start(std::vector<std::string>{programPath()});
}

void ApplicationFixture::start(const std::vector<std::string>& command) {
    m_program = desktop.start(command);
    (void)waitUntil([this] {
        if (meanwhile)
            meanwhile();
        return (m_window = find("kestrove")) != 0 || !m_program->isRunning();
    });
    if (m_window == XCB_WINDOW_NONE) {
        giveUp("the program shows no window: " + m_program->logTail());
    }
}

std::string ApplicationFixture::titleOf(xcb_window_t window) const {
    constexpr std::uint32_t enough = 1000;
    const auto cookie = xcb_get_property(desktop.connection(), 0, window,
                                         server.atom("_NET_WM_NAME"), XCB_ATOM_ANY, 0, enough);
    const Reply reply(xcb_get_property_reply(desktop.connection(), cookie, nullptr));
    if (!reply) {
        return {};
    }
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

xcb_window_t
ApplicationFixture::findTitled(const std::function<bool(std::string_view)>& isMeant) const {
    const auto isIt = [&](xcb_window_t window) {
        return isMeant(titleOf(window)) && isViewable(window);
    };
    // KWin has a second frame within the first one.
    constexpr int mostFrames = 2;
    auto level = children(desktop.root());
    for (int frames = 0; frames <= mostFrames; ++frames) {
        if (const auto found = std::ranges::find_if(level, isIt); found != level.end()) {
            return *found;
        }
        std::vector<xcb_window_t> next;
        for (const auto window : level) {
            std::ranges::copy(children(window), std::back_inserter(next));
        }
        level = std::move(next);
    }
    return XCB_WINDOW_NONE;
}

xcb_window_t ApplicationFixture::find(std::string_view sought) const {
    return findTitled([sought](std::string_view title) { return title == sought; });
}

std::vector<xcb_window_t> ApplicationFixture::children(xcb_window_t window) const {
    const Reply tree(xcb_query_tree_reply(desktop.connection(),
                                          xcb_query_tree(desktop.connection(), window), nullptr));
    if (!tree) {
        return {};
    }
    const auto* const first = xcb_query_tree_children(tree.get());
    return {first, first + tree->children_len};
}

bool ApplicationFixture::isViewable(xcb_window_t window) const {
    const auto cookie = xcb_get_window_attributes(desktop.connection(), window);
    const Reply reply(xcb_get_window_attributes_reply(desktop.connection(), cookie, nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

bool ApplicationFixture::isOfSameClient(xcb_window_t one, xcb_window_t other) const {
    const auto mask = xcb_get_setup(desktop.connection())->resource_id_mask;
    return (one & ~mask) == (other & ~mask);
}

xcb_rectangle_t ApplicationFixture::outputPlace() const {
    auto* const connection = desktop.connection();
    const Reply size(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, m_window), nullptr));
    const Reply place(xcb_translate_coordinates_reply(
        connection, xcb_translate_coordinates(connection, m_window, desktop.root(), 0, 0),
        nullptr));
    if (!size || !place) {
        giveUp("the output window is gone");
    }
    return {place->dst_x, place->dst_y, size->width, size->height};
}

xcb_rectangle_t ApplicationFixture::settledPlace() const {
    auto place = outputPlace();
    int inARow = 0;
    constexpr int enough = 150; // a window manager under load answers late
    (void)waitUntil([&] {
        const auto now = outputPlace();
        inARow = isSame(now, place) && isViewable(m_window) ? inARow + 1 : 0;
        place = now;
        return inARow >= enough;
    });
    return place;
}

PixelImage ApplicationFixture::output() const {
    // Nobody shall move it or make it smaller between the questions.
    xcb_grab_server(desktop.connection());
    const auto place = outputPlace();
    PixelImage image;
    if (isViewable(m_window) && place.x >= 0 && place.y >= 0 &&
        place.x + place.width <= rightPlace.x + rightPlace.width &&
        place.y + place.height <= rightPlace.height) {
        image = readPixels(desktop.connection(), m_window);
    }
    xcb_ungrab_server(desktop.connection());
    sync(desktop.connection());
    return image;
}

testing::AssertionResult ApplicationFixture::shows(const PaintedDisplay& display,
                                                   std::string_view name) {
    return shows(display.picture(), name);
}

testing::AssertionResult ApplicationFixture::shows(const PixelImage& source,
                                                   std::string_view name) {
    PixelImage shown;
    PixelImage expected;
    int tolerance = 0;
    (void)waitUntil([&] {
        shown = output();
        if (shown.pixels.empty()) {
            return false;
        }
        expected = presentation(source, shown);
        const bool isScaled = shown.width != source.width || shown.height != source.height;
        tolerance = isScaled ? scalingTolerance : 0;
        return areAlike(shown, expected, tolerance);
    });
    if (shown.pixels.empty()) {
        const auto place = outputPlace();
        return testing::AssertionFailure()
               << fmt::format("{}: a part of the output is off the screen: {}x{} at {},{}", name,
                              place.width, place.height, place.x, place.y);
    }
    return samePixels(shown, expected, name, tolerance);
}

testing::AssertionResult ApplicationFixture::showsPlaceholder(std::string_view name) {
    PixelImage shown;
    const bool isShown = waitUntil([&] {
        shown = output();
        return isPlaceholder(shown);
    });
    if (isShown)
        return testing::AssertionSuccess() << name;
    const PixelImage black{shown.width, shown.height,
                           std::vector<std::uint32_t>(shown.pixels.size(), 0xff000000)};
    return samePixels(shown, black, name);
}

void ApplicationFixture::placeOutput(const xcb_rectangle_t& place) {
    // No hand is as fast as the window's first place and the window manager's answer to it.
    (void)settledPlace();
    const std::array<std::uint32_t, 4> values{
        static_cast<std::uint32_t>(place.x), static_cast<std::uint32_t>(place.y),
        static_cast<std::uint32_t>(place.width), static_cast<std::uint32_t>(place.height)};
    xcb_configure_window(desktop.connection(), m_window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values.data());
    sync(desktop.connection());
    constexpr int thickestFrame = 60;
    expectWithin(
        [&] {
            const auto now = outputPlace();
            return now.width == place.width && now.height == place.height && now.x >= place.x &&
                   now.y >= place.y && now.x <= place.x + thickestFrame &&
                   now.y <= place.y + thickestFrame;
        },
        "the output window's new place");
}

bool ApplicationFixture::hasFocus() const {
    const Reply focus(xcb_get_input_focus_reply(
        desktop.connection(), xcb_get_input_focus(desktop.connection()), nullptr));
    return focus && focus->focus == m_window;
}

void ApplicationFixture::press(Key key) {
    expectWithin([this] { return hasFocus(); }, "the output window's focus");
    server.press(key);
}

void ApplicationFixture::openMenuByMouse() {
    const auto place = outputPlace();
    server.movePointer(place.x + place.width / 2, place.y + place.height / 2);
    server.click(3);
    expectWithin([this] { return isMenuOpen(); }, "the menu");
}

void ApplicationFixture::openMenuByKey() {
    press(Key::menu);
    expectWithin([this] { return isMenuOpen(); }, "the menu");
}

void ApplicationFixture::openMenuByShiftF10() {
    expectWithin([this] { return hasFocus(); }, "the output window's focus");
    server.press(Key::shift, Key::f10);
    expectWithin([this] { return isMenuOpen(); }, "the menu");
}

void ApplicationFixture::chooseFromMenu(int entry) {
    choose(Key::down, entry);
}

void ApplicationFixture::chooseFromMenuEnd(int entry) {
    choose(Key::up, entry);
}

bool ApplicationFixture::isKeyboardTaken() const {
    auto* const connection = desktop.connection();
    // Held, so that the one who is just about to take it finds it free.
    xcb_grab_server(connection);
    const Reply grab(
        xcb_grab_keyboard_reply(connection,
                                xcb_grab_keyboard(connection, 0, desktop.root(), XCB_CURRENT_TIME,
                                                  XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                nullptr));
    if (grab && grab->status == XCB_GRAB_STATUS_SUCCESS)
        xcb_ungrab_keyboard(connection, XCB_CURRENT_TIME);
    xcb_ungrab_server(connection);
    sync(connection);
    return grab && grab->status == XCB_GRAB_STATUS_ALREADY_GRABBED;
}

void ApplicationFixture::choose(Key direction, int steps) {
    // A menu is on the screen before it has the keyboard.
    expectWithin([this] { return isKeyboardTaken(); }, "the menu to take the keyboard");
    for (int each = 0; each < steps; ++each) {
        server.press(direction);
    }
    server.press(Key::returnKey);
    expectWithin([this] { return !isMenuOpen(); }, "the menu to close");
}

bool ApplicationFixture::isMenuOpen() const {
    return std::ranges::any_of(children(desktop.root()), [this](xcb_window_t window) {
        return window != m_window && isOfSameClient(window, m_window) && isViewable(window);
    });
}

xcb_window_t ApplicationFixture::frameWindow() const {
    auto below = children(m_window);
    while (!below.empty()) {
        const auto window = below.back();
        below.pop_back();
        if (!isOfSameClient(window, m_window)) {
            return window;
        }
        std::ranges::copy(children(window), std::back_inserter(below));
    }
    return XCB_WINDOW_NONE;
}

testing::AssertionResult ApplicationFixture::endsWith(int exitCode) {
    if (!m_program->waitForExit(patience)) {
        return testing::AssertionFailure() << "it goes on: " << m_program->logTail();
    }
    const int code = *m_program->exitCode();
    return (code == exitCode ? testing::AssertionSuccess() : testing::AssertionFailure())
           << "exit code " << code << ": " << m_program->logTail();
}

} // namespace kestrove::test

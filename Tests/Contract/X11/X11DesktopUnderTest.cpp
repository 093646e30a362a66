#include "Tests/Contract/X11/X11DesktopUnderTest.h"

#include "Platform/X11/HotKeys/PhysicalKeys.h"
#include "Tests/Support/PixelReader/PixelReader.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/KeyPresses.h"
#include "Tests/Support/XServer/Reply.h"

#include <array>
#include <ranges>
#include <utility>
#include <vector>

#include <unistd.h>

namespace kestrove::contract {
namespace {

std::unique_ptr<x11::Connection> connect(PollMainLoop& loop, const std::string& display) {
    auto connection = x11::Connection::open(loop, loop, display);
    if (!connection)
        test::giveUp(connection.error().description);
    return std::move(*connection);
}

xcb_rectangle_t pixelsOf(const Rect& frame) {
    return {static_cast<std::int16_t>(frame.x), static_cast<std::int16_t>(frame.y),
            static_cast<std::uint16_t>(frame.width), static_cast<std::uint16_t>(frame.height)};
}

test::Color pixelOf(const Color& color) {
    return 0xFF000000U | static_cast<std::uint32_t>(color.red) << 16U |
           static_cast<std::uint32_t>(color.green) << 8U | static_cast<std::uint32_t>(color.blue);
}

/// The key itself last.
std::vector<xcb_keycode_t> serverKeys(std::uint32_t keyCode, std::uint32_t modifiers) {
    constexpr std::array<std::pair<std::uint32_t, xcb_keycode_t>, 4> modifierKeys{{
        {0x1000, test::ServerKey::control},
        {0x800, test::ServerKey::alt},
        {0x200, test::ServerKey::shift},
        {0x100, test::ServerKey::super},
    }};
    std::vector<xcb_keycode_t> keys;
    for (const auto& [bit, key] : modifierKeys) {
        if ((modifiers & bit) != 0)
            keys.push_back(key);
    }
    keys.push_back(x11::serverCodeOf(keyCode).value());
    return keys;
}

} // namespace

X11DesktopUnderTest::X11DesktopUnderTest()
    : m_desktop(test::XDesktop::Options{.windowManager = test::WindowManager::openbox})
    , m_connection(connect(m_loop, m_desktop.displayName()))
    , m_layout(*m_connection)
    , m_motion(*m_connection)
    , m_applications(DesktopEntries({}))
    , m_screens(*m_connection, m_layout)
    , m_pointer(*m_connection, m_layout, m_motion)
    , m_windowServer(*m_connection, m_layout)
    , m_workspace(*m_connection, m_loop, m_applications, m_session)
    , m_access(*m_connection)
    , m_capture(*m_connection, m_layout, m_applications, m_motion)
    , m_hotKeys(*m_connection) {
    m_desktop.server().movePointer(1, 1);
    settle();
}

X11DesktopUnderTest::~X11DesktopUnderTest() = default;

test::MockLogind& X11DesktopUnderTest::services() {
    if (!m_servedSession)
        m_servedSession = std::make_unique<test::ServedSession>(m_loop, m_loop, m_session);
    return m_servedSession->logind;
}

std::unique_ptr<DisplayLayer> X11DesktopUnderTest::makeDisplayLayer() {
    return std::make_unique<x11::X11DisplayLayer>(*m_connection);
}

bool X11DesktopUnderTest::waitUntil(const std::function<bool()>& condition) {
    return m_loop.spinUntil(condition);
}

void X11DesktopUnderTest::settle() {
    (void)m_connection->reply(xcb_get_input_focus_reply, xcb_get_input_focus(m_connection->get()));
    m_loop.runUntilIdle();
}

void X11DesktopUnderTest::unplugSecondDisplay() {
    m_desktop.server().removeMonitor(test::twoMonitors().back().name);
}

void X11DesktopUnderTest::plugSecondDisplay() {
    m_desktop.server().setMonitor(test::twoMonitors().back());
}

ProcessID X11DesktopUnderTest::ownProcess() {
    return getpid();
}

ProcessID X11DesktopUnderTest::startApplication(const std::string& name) {
    auto program = m_desktop.start({"sleep", "1000"});
    const auto process = program->processIdentifier();
    m_running.emplace(process, Application{name, std::move(program)});
    return process;
}

void X11DesktopUnderTest::endApplication(ProcessID process) {
    std::erase_if(m_windows, [&](const auto& each) { return each.second.process == process; });
    m_running.erase(process);
}

WindowID X11DesktopUnderTest::openWindow(const NewWindow& window) {
    const auto application = m_running.find(window.processID);
    test::TestWindow::Options options;
    options.geometry = pixelsOf(window.frame);
    options.color = pixelOf(window.color);
    options.overrideRedirect = window.kind == WindowKind::popup;
    options.mapped = false;
    options.title = window.title;
    options.className = application == m_running.end() ? "kestrove" : application->second.name;
    options.processIdentifier = static_cast<std::uint32_t>(window.processID);
    auto opened = std::make_unique<test::TestWindow>(m_desktop.displayName(), options);
    // A window that opened by itself, at no time of the user's, does not get the focus.
    opened->setProperty("_NET_WM_USER_TIME", XCB_ATOM_CARDINAL, {0});
    opened->show();
    opened->raise();
    const auto identifier = opened->id();
    m_windows.emplace(identifier, OpenWindow{window.processID, std::move(opened)});
    return identifier;
}

void X11DesktopUnderTest::closeWindow(WindowID window) {
    m_windows.at(window).window->destroy();
}

void X11DesktopUnderTest::moveWindow(WindowID window, Rect frame) {
    const auto [x, y, width, height] = pixelsOf(frame);
    m_windows.at(window).window->resize(width, height);
    m_windows.at(window).window->move(x, y);
}

void X11DesktopUnderTest::raiseWindow(WindowID window) {
    m_windows.at(window).window->raise();
}

void X11DesktopUnderTest::setTitle(WindowID window, const std::string& title) {
    m_windows.at(window).window->setTitle(title);
}

void X11DesktopUnderTest::paintWindow(WindowID window, Color color) {
    auto& painted = *m_windows.at(window).window;
    const auto [x, y, width, height] = painted.geometry();
    painted.fillRectangle({0, 0, width, height}, pixelOf(color));
}

void X11DesktopUnderTest::hideWindow(WindowID window) {
    constexpr std::uint32_t iconic = 3;
    tellWindowManager(window, "WM_CHANGE_STATE", iconic);
    // It is only a wish until the window manager has taken it up.
    EXPECT_TRUE(
        waitUntil([&] { return m_desktop.server().propertyItem(window, "WM_STATE") == iconic; }));
}

void X11DesktopUnderTest::focusWindow(WindowID window) {
    constexpr std::uint32_t fromAPager = 2;
    tellWindowManager(window, "_NET_ACTIVE_WINDOW", fromAPager);
}

void X11DesktopUnderTest::focusNothing() {
    tellWindowManager(m_desktop.root(), "_NET_SHOWING_DESKTOP", 1);
}

void X11DesktopUnderTest::movePointer(Point to) {
    const auto& main = m_layout.monitors().front().rectangle;
    m_desktop.server().movePointer(main.x + static_cast<int>(to.x),
                                   main.y + main.height - 1 - static_cast<int>(to.y));
}

void X11DesktopUnderTest::pressKey(std::uint32_t keyCode, std::uint32_t modifiers) {
    test::pressTogether(m_desktop.connection(), serverKeys(keyCode, modifiers));
}

void X11DesktopUnderTest::holdKey(std::uint32_t keyCode, std::uint32_t modifiers) {
    const auto keys = serverKeys(keyCode, modifiers);
    for (const auto key : keys)
        test::keyDown(m_desktop.connection(), key);
    int repeated = 0;
    const auto counting = m_connection->events.subscribe(
        [&](const auto& event) { repeated += test::isGrabbedKeyPress(event) ? 1 : 0; });
    EXPECT_TRUE(waitUntil([&] { return repeated > 3; })) << "the server repeats held keys";
    for (const auto key : keys | std::views::reverse)
        test::keyUp(m_desktop.connection(), key);
}

void X11DesktopUnderTest::takeHotKeyByOtherProgram(std::uint32_t keyCode, std::uint32_t modifiers) {
    const auto map = x11::readModifierMap(*m_connection);
    const test::Reply error(xcb_request_check(
        m_desktop.connection(),
        xcb_grab_key_checked(m_desktop.connection(), 0, m_desktop.root(),
                             map.serverModifiers(modifiers), x11::serverCodeOf(keyCode).value(),
                             XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)));
    EXPECT_FALSE(error);
}

NativeViewHandle X11DesktopUnderTest::makeView(Size pixels) {
    // On the second display, where the suites open no windows that could cover it.
    test::TestWindow::Options options;
    options.geometry = pixelsOf({1400, 100, pixels.width, pixels.height});
    options.color = 0xFF000000U;
    options.overrideRedirect = true;
    auto view = std::make_unique<test::TestWindow>(m_desktop.displayName(), options);
    const NativeViewHandle handle = view->id();
    m_views.emplace(handle, std::move(view));
    return handle;
}

void X11DesktopUnderTest::destroyView(NativeViewHandle view) {
    m_views.erase(view);
}

Color X11DesktopUnderTest::colorInView(NativeViewHandle view, Point pixel) {
    settle();
    const auto image = test::readPixels(
        m_desktop.connection(), static_cast<xcb_window_t>(view),
        {static_cast<std::int16_t>(pixel.x), static_cast<std::int16_t>(pixel.y), 1, 1});
    const auto value = image.pixel(0, 0);
    return {static_cast<int>(value >> 16U & 0xFFU), static_cast<int>(value >> 8U & 0xFFU),
            static_cast<int>(value & 0xFFU)};
}

void X11DesktopUnderTest::tellWindowManager(WindowID window, std::string_view type,
                                            std::uint32_t value) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = m_desktop.server().atom(type);
    message.data.data32[0] = value;
    xcb_send_event(m_desktop.connection(), 0, m_desktop.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(m_desktop.connection());
}

} // namespace kestrove::contract

#include "Tests/Support/XServer/XDesktop.h"

#include "Tests/Support/Processes/LinePipe.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/Reply.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

#include <fmt/core.h>
#include <gtest/gtest.h>
#include <xcb/composite.h>

namespace kestrove::test {

namespace {

bool needsSessionBus(WindowManager manager) {
    using enum WindowManager;
    return manager == xfwm4 || manager == metacity || manager == mutter || manager == kwin;
}

/// Windows float, as they do with the other window managers.
std::string i3Configuration(const std::filesystem::path& folder) {
    const auto file = folder / "i3.conf";
    std::ofstream(file) << "# i3 config file (v4)\n"
                           "for_window [class=\".*\"] floating enable\n"
                           "font pango:monospace 8\n";
    return file;
}

} // namespace

XDesktop::XDesktop(const Options& options)
    : m_server(m_folder.path(), options.monitors) {
    if (options.sessionBus == SessionBus::own || needsSessionBus(options.windowManager)) {
        startSessionBus();
    }
    startWindowManager(options.windowManager);
    if (options.compositor == Compositor::picom) {
        startCompositor();
    }
}

XDesktop::~XDesktop() {
    if (testing::Test::HasFailure()) {
        printLogs();
    }
}

std::vector<std::string> XDesktop::environment() const {
    const std::string folder = m_folder.path();
    return {"DISPLAY=" + displayName(), "HOME=" + folder, "XDG_CONFIG_HOME=" + folder,
            "XDG_CACHE_HOME=" + folder, "XDG_DATA_HOME=" + folder, "XDG_RUNTIME_DIR=" + folder,
            // "disabled:" keeps libraries from starting a bus of their own.
            "DBUS_SESSION_BUS_ADDRESS=" + (m_busAddress.empty() ? "disabled:" : m_busAddress),
            "NO_AT_BRIDGE=1", "LC_ALL=C.UTF-8", "XDG_SESSION_TYPE=x11"};
}

std::unique_ptr<ChildProcess> XDesktop::start(const std::vector<std::string>& command) {
    const std::string program = std::filesystem::path(command.at(0)).filename();
    return std::make_unique<ChildProcess>(ChildProcess::Options{
        .command = command,
        .environment = environment(),
        .log = m_folder.path() / fmt::format("{}-{}.log", program, ++m_logCount),
        .keptDescriptors = {}});
}

void XDesktop::startSessionBus() {
    LinePipe address;
    m_bus = std::make_unique<ChildProcess>(ChildProcess::Options{
        .command = {"dbus-daemon", "--session", "--nofork", "--nopidfile",
                    "--address=unix:path=" + (m_folder.path() / "bus").string(),
                    fmt::format("--print-address={}", address.writeEnd())},
        .environment = environment(),
        .log = m_folder.path() / "dbus-daemon.log",
        .keptDescriptors = {address.writeEnd()}});
    m_busAddress = address.readLine();
    if (m_busAddress.empty()) {
        giveUp("dbus-daemon did not start: " + m_bus->logTail());
    }
}

void XDesktop::startWindowManager(WindowManager manager) {
    switch (manager) {
    case WindowManager::none:
        return;
    case WindowManager::openbox:
        m_windowManager = start({"openbox", "--sm-disable"});
        break;
    case WindowManager::xfwm4:
        m_windowManager = start({"xfwm4", "--compositor=off", "--vblank=off"});
        break;
    case WindowManager::metacity:
        m_windowManager = start({"metacity", "--no-composite", "--sm-disable"});
        break;
    case WindowManager::mutter:
        // A compositor always.
        m_windowManager = start({"mutter", "--x11", "--sm-disable"});
        break;
    case WindowManager::kwin:
        m_answersAboutFrames = AnswersAboutFrames::no;
        // What fades in and out would be on the screen for a while.
        std::ofstream(m_folder.path() / "kdeglobals") << "[KDE]\nAnimationDurationFactor=0\n";
        // It lets a corner glow while the pointer comes near.
        std::ofstream(m_folder.path() / "kwinrc") << "[Plugins]\nscreenedgeEnabled=false\n";
        m_windowManager = start({"kwin_x11", "--no-kactivities"});
        break;
    case WindowManager::i3:
        m_windowManager = start({"i3", "-c", i3Configuration(m_folder.path())});
        break;
    }
    m_probe = xcb_generate_id(connection());
    xcb_create_window(connection(), XCB_COPY_FROM_PARENT, m_probe, root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    waitForProgram(*m_windowManager, &XDesktop::hasWindowManager);
    xcb_destroy_window(connection(), m_probe);
    sync(connection());
}

void XDesktop::stopWindowManager() {
    m_windowManager.reset();
}

void XDesktop::startCompositor() {
    m_compositor = start({"picom", "--backend", "xrender", "--config", "/dev/null", "--no-vsync"});
    waitForProgram(*m_compositor, &XDesktop::hasCompositor);
}

void XDesktop::stopCompositor() {
    m_compositor.reset();
}

void XDesktop::stopSessionBus() {
    m_bus.reset();
}

bool XDesktop::hasWindowManager() const {
    // The property outlives a killed window manager; the window that it names does not.
    const xcb_window_t check = m_server.propertyItem(root(), "_NET_SUPPORTING_WM_CHECK");
    if (check == XCB_WINDOW_NONE ||
        m_server.propertyItem(check, "_NET_SUPPORTING_WM_CHECK") != check) {
        return false;
    }
    if (m_answersAboutFrames == AnswersAboutFrames::no) {
        // Whoever takes over a window says so.
        xcb_map_window(connection(), m_probe);
        sync(connection());
        return m_server.hasProperty(m_probe, "WM_STATE");
    }
    // openbox says so before it listens, and a request that arrives in between waits for the next
    // event, which may never come. So ask until there is an answer: then it does listen.
    xcb_client_message_event_t question{};
    question.response_type = XCB_CLIENT_MESSAGE;
    question.format = 32;
    question.window = m_probe;
    question.type = m_server.atom("_NET_REQUEST_FRAME_EXTENTS");
    xcb_send_event(connection(), 0, root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&question));
    return m_server.hasProperty(m_probe, "_NET_FRAME_EXTENTS");
}

bool XDesktop::hasCompositor() const {
    const auto cookie = xcb_get_selection_owner(connection(), m_server.atom("_NET_WM_CM_S0"));
    const Reply reply(xcb_get_selection_owner_reply(connection(), cookie, nullptr));
    // picom says so before it takes the windows over: only then the screen is its own.
    return reply && reply->owner != XCB_WINDOW_NONE && redirectsWindows();
}

bool XDesktop::redirectsWindows() const {
    const std::uint32_t overrideRedirect = 1;
    const auto window = xcb_generate_id(connection());
    const auto pixmap = xcb_generate_id(connection());
    xcb_create_window(connection(), XCB_COPY_FROM_PARENT, window, root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
                      &overrideRedirect);
    xcb_map_window(connection(), window);
    // Only a redirected window has a pixmap to name.
    const Reply<xcb_generic_error_t> error(xcb_request_check(
        connection(), xcb_composite_name_window_pixmap_checked(connection(), window, pixmap)));
    if (!error)
        xcb_free_pixmap(connection(), pixmap);
    xcb_destroy_window(connection(), window);
    sync(connection());
    return !error;
}

void XDesktop::waitForProgram(ChildProcess& program, bool (XDesktop::*isReady)() const) {
    const bool ended = waitUntil([&] { return (this->*isReady)() || !program.isRunning(); });
    if (!ended || !program.isRunning()) {
        giveUp(fmt::format("{} did not start: {}", program.name(), program.logTail()));
    }
}

void XDesktop::printLogs() const {
    for (const auto& entry : std::filesystem::directory_iterator(m_folder.path())) {
        if (entry.path().extension() == ".log") {
            std::ostringstream text;
            text << std::ifstream(entry.path()).rdbuf();
            fmt::print(stderr, "--- {}\n{}\n", entry.path().filename().string(), text.str());
        }
    }
}

} // namespace kestrove::test

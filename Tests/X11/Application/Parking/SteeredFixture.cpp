#include "Tests/X11/Application/Parking/SteeredFixture.h"

#include "Tests/Support/PixelReader/PixelReader.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Application/Paths.h"
#include "Tests/X11/Application/Presentation.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <span>
#include <sys/stat.h>
#include <unistd.h>

#include <fmt/core.h>

namespace kestrove::test {

namespace {

constexpr std::uint32_t normalState = 1;
constexpr int scalingTolerance = 3; ///< of a channel: passes of a filter round one after the other

std::string text(const xcb_rectangle_t& place) {
    return fmt::format("{}x{} at {},{}", place.width, place.height, place.x, place.y);
}

} // namespace

bool Desk::canMinimise() const {
    return manager != WindowManager::none && manager != WindowManager::i3;
}

bool Desk::hasLevels() const {
    return manager != WindowManager::none && manager != WindowManager::i3;
}

std::vector<Desk> everyDesk() {
    using enum WindowManager;
    return {{"Bare", none},
            {"BarePicom", none, Compositor::picom},
            {"Openbox", openbox},
            {"OpenboxPicom", openbox, Compositor::picom},
            {"Xfwm4", xfwm4},
            {"Xfwm4Picom", xfwm4, Compositor::picom},
            {"I3Picom", i3, Compositor::picom},
            {"Metacity", metacity},
            {"Mutter", mutter},
            {"Kwin", kwin},
            {"I3", i3}};
}

SteeredFixture::SteeredFixture(const Desk& on)
    : ApplicationFixture(on.manager)
    , desk(on) {
    if (on.compositor == Compositor::picom)
        desktop.startCompositor();
}

SteeredFixture::~SteeredFixture() {
    if (m_commands >= 0)
        ::close(m_commands);
}

void SteeredFixture::startSteered(std::string_view settings) {
    const auto pipe = desktop.folder() / "commands";
    if (::mkfifo(pipe.c_str(), 0600) != 0)
        giveUp("no pipe to the program");
    // For reading too: it neither waits for the other end nor breaks without it.
    m_commands = ::open(pipe.c_str(), O_RDWR | O_CLOEXEC);
    writeSettings(settings);
    start({steeredProgramPath(), pipe});
}

void SteeredFixture::tell(std::string_view command) const {
    const auto line = std::string(command) + "\n";
    if (::write(m_commands, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
        giveUp("the program cannot be told anything");
}

bool SteeredFixture::isOutputViewable() const {
    const auto cookie = xcb_get_window_attributes(desktop.connection(), window());
    const Reply reply(xcb_get_window_attributes_reply(desktop.connection(), cookie, nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

void SteeredFixture::moveOutputToTheRight() {
    const std::array<std::uint32_t, 2> place{static_cast<std::uint32_t>(rightPlace.x + 60), 100};
    xcb_configure_window(desktop.connection(), window(), XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y,
                         place.data());
    sync(desktop.connection());
    // xfwm4 leaves a strip of it where it was.
    EXPECT_TRUE(waitUntil([this] {
        const auto now = outputPlace();
        return now.x + now.width / 2 >= rightPlace.x;
    }));
}

void SteeredFixture::minimise() {
    constexpr std::uint32_t iconicState = 3;
    if (!desk.canMinimise())
        return;
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window();
    event.type = server.atom("WM_CHANGE_STATE");
    event.data.data32[0] = iconicState;
    const auto ask = [&] {
        xcb_send_event(desktop.connection(), 0, desktop.root(),
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&event));
        sync(desktop.connection());
    };
    // A window manager that is still taking the window over does not hear it; a user would ask
    // again.
    constexpr int looksBetween = 50;
    EXPECT_TRUE(waitUntil([&, looks = 0]() mutable {
        if (looks++ % looksBetween == 0)
            ask();
        return server.propertyItem(window(), "WM_STATE") == iconicState;
    }));
}

bool SteeredFixture::hasState(std::string_view state) const {
    const auto cookie = xcb_get_property(desktop.connection(), 0, window(),
                                         server.atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 0, 100);
    const Reply reply(xcb_get_property_reply(desktop.connection(), cookie, nullptr));
    if (!reply)
        return false;
    const std::span atoms(static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get())),
                          reply->value_len);
    return std::ranges::find(atoms, server.atom(state)) != atoms.end();
}

bool SteeredFixture::isOffScreen() const {
    const auto place = outputPlace();
    const bool isLeftOfAll = place.x + place.width <= 0;
    const bool isBelowAll = place.y >= rightPlace.height;
    return isLeftOfAll || isBelowAll;
}

bool SteeredFixture::isParked() const {
    return isOffScreen() && isOutputViewable() &&
           server.propertyItem(window(), "WM_STATE") == normalState;
}

testing::AssertionResult SteeredFixture::parks() {
    tell("hide");
    // The window manager hears of it later and cleans up after the window: it may be at that still.
    int inARow = 0;
    constexpr int enough = 20;
    if (waitUntil([&] { return (inARow = isParked() ? inARow + 1 : 0) >= enough; }))
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << "it lies " << text(outputPlace()) << ", viewable: " << isOutputViewable()
           << ", WM_STATE: " << server.propertyItem(window(), "WM_STATE");
}

testing::AssertionResult SteeredFixture::returnsTo(const xcb_rectangle_t& place) {
    tell("unhide");
    if (waitUntil([&] { return isOutputViewable() && isSame(outputPlace(), place); }))
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << "it lies " << text(outputPlace()) << " and not " << text(place);
}

xcb_rectangle_t SteeredFixture::placeToComeBackTo() {
    (void)settledPlace();
    EXPECT_TRUE(parks());
    tell("unhide");
    EXPECT_TRUE(waitUntil([this] { return isOutputViewable() && !isParked(); }));
    return settledPlace();
}

testing::AssertionResult SteeredFixture::presents(PaintedDisplay& display,
                                                  std::string_view name) const {
    constexpr int questionsBetweenHelp = 200;
    const auto source = display.picture();
    PixelImage shown;
    PixelImage expected;
    int tolerance = 0;
    int questions = 0;
    const auto isThatOfTheSource = [&] {
        // Now and then mutter does not bring to the screen what was painted.
        if (++questions % questionsBetweenHelp == 0 && !display.isOnScreen())
            display.paintAgain();
        // Nobody shall hide it or make it smaller between the questions.
        xcb_grab_server(desktop.connection());
        const bool isThere = isOutputViewable();
        if (isThere)
            shown = readPixels(desktop.connection(), window());
        xcb_ungrab_server(desktop.connection());
        sync(desktop.connection());
        if (!isThere)
            return false;
        expected = presentation(source, shown);
        const bool isScaled = shown.width != source.width || shown.height != source.height;
        tolerance = isScaled ? scalingTolerance : 0;
        return areAlike(shown, expected, tolerance);
    };
    // With too little of a processor, mutter sometimes paints nothing at all for half a minute.
    if (!waitUntil(isThatOfTheSource) && !display.isOnScreen())
        (void)waitUntil(isThatOfTheSource, 2 * patience);
    return samePixels(shown, expected, name, tolerance)
           << (display.isOnScreen() ? "" : "; neither does the screen show it");
}

} // namespace kestrove::test

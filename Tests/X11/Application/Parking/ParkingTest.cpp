#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Application/Parking/SteeredFixture.h"
#include "Tests/X11/Application/Parking/WindowGrab.h"

#include <array>
#include <fmt/core.h>
#include <optional>

namespace kestrove::test {
namespace {

class Parking : public SteeredFixture, public testing::WithParamInterface<Desk> {
protected:
    Parking()
        : SteeredFixture(GetParam()) {}

    void share(std::string_view settings) {
        startSteered(std::string(settings) + "kestrove.autoStart=true\n");
        server.movePointer(20, 20);
    }

    /// What the display shows becomes another, and the output follows.
    testing::AssertionResult isLive(PaintedDisplay& display, std::string_view name) {
        display.paint({200, 100, 300, 250}, nextShade());
        return presents(display, name);
    }

    /// From now on another program captures the window too, in the middle of what changes on the
    /// right display.
    void grabOutput() {
        m_grab.emplace(desktop, window(), WindowGrab::Spot{350.0 / 1280, 225.0 / 800});
    }
    /// The same as seen by that program.
    testing::AssertionResult isGrabbedLive() {
        right.paint({200, 100, 300, 250}, nextShade());
        if (m_grab->sees(m_shade))
            return testing::AssertionSuccess();
        return testing::AssertionFailure()
               << fmt::format("it sees {:#x} and not {:#x}, runs: {}", m_grab->last(), m_shade,
                              m_grab->isRunning());
    }

private:
    Color nextShade() {
        m_shade = 0xff000000 | (m_shade + 0x00301010);
        return m_shade;
    }

    std::optional<WindowGrab> m_grab;
    Color m_shade = 0xff101010;
};

INSTANTIATE_TEST_SUITE_P(Desks, Parking, testing::ValuesIn(everyDesk()),
                         [](const auto& tested) { return tested.param.name; });

TEST_P(Parking, GoesOnLiveUnderTheSameIdentifierAndComesBackToThePixel) {
    share(onlyDisplay("RIGHT"));
    ASSERT_TRUE(presents(right, "shown"));
    const auto place = placeToComeBackTo();
    for (int time = 0; time < 2; ++time) {
        ASSERT_TRUE(parks());
        EXPECT_EQ(outputPlace().width, place.width);
        EXPECT_EQ(outputPlace().height, place.height);
        EXPECT_TRUE(isLive(right, "parked"));
        ASSERT_TRUE(returnsTo(place));
        EXPECT_TRUE(isLive(right, "back"));
    }
}

TEST_P(Parking, IsLiveToAProgramThatCapturesItWhenItGoes) {
    share(onlyDisplay("RIGHT"));
    ASSERT_TRUE(presents(right, "shown"));
    const auto place = placeToComeBackTo();
    grabOutput();
    for (int time = 0; time < 2; ++time) {
        ASSERT_TRUE(isGrabbedLive()) << "shown";
        ASSERT_TRUE(parks());
        EXPECT_TRUE(isGrabbedLive()) << "parked";
        EXPECT_TRUE(isGrabbedLive()) << "parked still";
        ASSERT_TRUE(returnsTo(place));
    }
}

TEST_P(Parking, TakesTheShapeOfAnotherSourceAndStaysUnseen) {
    share("");
    ASSERT_TRUE(presents(left, "shown"));
    ASSERT_TRUE(parks());
    server.movePointer(1200, 700);
    EXPECT_TRUE(presents(right, "another source"));
    EXPECT_TRUE(waitUntil([this] {
        const auto shape = outputPlace();
        return std::abs(1280 * shape.height - 800 * shape.width) <= 1280;
    }));
    EXPECT_TRUE(waitUntil([this] { return isOffScreen(); }));
    EXPECT_TRUE(waitUntil([this] { return isParked(); })); // its state may be in the making anew
    EXPECT_TRUE(isLive(right, "parked, another source"));
    tell("unhide");
    EXPECT_TRUE(waitUntil([this] { return isOutputViewable() && !isParked(); }));
    EXPECT_TRUE(shows(right, "back"));
}

TEST_P(Parking, ComesBackToTheDisplayThatIsLeft) {
    share(onlyDisplay("LEFT"));
    ASSERT_TRUE(presents(left, "shown"));
    (void)settledPlace();
    moveOutputToTheRight();
    (void)settledPlace();
    ASSERT_TRUE(parks());
    server.removeMonitor("RIGHT");
    EXPECT_TRUE(isLive(left, "unplugged"));
    EXPECT_TRUE(waitUntil([this] { return isOffScreen(); }));
    EXPECT_TRUE(waitUntil([this] { return isParked(); })); // its state may be in the making anew
    tell("unhide");
    EXPECT_TRUE(waitUntil([this] {
        const auto place = outputPlace();
        return isOutputViewable() && place.x >= 0 && place.y >= 0 && place.height > 0 &&
               place.x + place.width <= leftPlace.width &&
               place.y + place.height <= leftPlace.height;
    }));
    EXPECT_TRUE(shows(left, "back"));
}

TEST_P(Parking, ShowsAMinimisedWindowToThoseWhoCaptureIt) {
    share(onlyDisplay("RIGHT"));
    ASSERT_TRUE(presents(right, "shown"));
    const auto place = placeToComeBackTo();
    minimise();
    ASSERT_TRUE(parks());
    EXPECT_TRUE(isLive(right, "parked"));
    ASSERT_TRUE(returnsTo(place));
    EXPECT_TRUE(isLive(right, "back"));
}

TEST_P(Parking, ComesBackAmongTheWindowsThatAreListed) {
    share(onlyDisplay("RIGHT"));
    ASSERT_TRUE(presents(right, "shown"));
    ASSERT_TRUE(parks());
    // As a window manager leaves it that sees the parked window and has nothing to do with it.
    const std::array states{server.atom("_NET_WM_STATE_SKIP_TASKBAR"),
                            server.atom("_NET_WM_STATE_SKIP_PAGER")};
    xcb_change_property(desktop.connection(), XCB_PROP_MODE_REPLACE, window(),
                        server.atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 32, states.size(),
                        states.data());
    sync(desktop.connection());
    tell("unhide");
    EXPECT_TRUE(waitUntil([this] { return isOutputViewable() && !isParked(); }));
    if (GetParam().hasLevels()) {
        EXPECT_TRUE(waitUntil([this] {
            return !hasState("_NET_WM_STATE_SKIP_TASKBAR") && !hasState("_NET_WM_STATE_SKIP_PAGER");
        }));
    }
    // What is not listed, some let nobody minimise.
    minimise();
    ASSERT_TRUE(parks());
    EXPECT_TRUE(isLive(right, "minimised, then parked"));
}

TEST_P(Parking, KeepsItsLevelThroughIt) {
    if (!GetParam().hasLevels()) {
        // What is left is that the switch does no harm.
        share("");
        ASSERT_TRUE(presents(left, "shown"));
        tell("float");
        ASSERT_TRUE(parks());
        EXPECT_TRUE(isLive(left, "parked"));
        return;
    }
    share("");
    ASSERT_TRUE(presents(left, "shown"));
    EXPECT_FALSE(hasState("_NET_WM_STATE_ABOVE"));
    tell("float");
    EXPECT_TRUE(waitUntil([this] { return hasState("_NET_WM_STATE_ABOVE"); }));
    ASSERT_TRUE(parks());
    tell("unhide");
    EXPECT_TRUE(waitUntil([this] { return hasState("_NET_WM_STATE_ABOVE"); }));
    ASSERT_TRUE(parks());
    tell("sink");
    tell("unhide");
    EXPECT_TRUE(waitUntil([this] {
        return !isParked() && server.hasProperty(window(), "WM_STATE") && isOutputViewable() &&
               !hasState("_NET_WM_STATE_ABOVE");
    }));
    EXPECT_TRUE(isLive(left, "back among the others"));
}

TEST_P(Parking, IsThereFromTheStartWhenTheWindowWasLeftHidden) {
    share(onlyDisplay("RIGHT") + "kestrove.hideOutputWindow=true\n");
    EXPECT_TRUE(waitUntil([this] { return isParked(); }));
    // Mutter never shows what is painted just when it begins to show a window.
    EXPECT_TRUE(presents(right, "at first"));
    EXPECT_TRUE(isLive(right, "parked"));
    tell("unhide");
    EXPECT_TRUE(waitUntil([this] { return isOutputViewable() && !isParked(); }));
    (void)settledPlace();
    EXPECT_TRUE(shows(right, "back"));
}

/// Parked where nobody but the test interferes.
class Parked : public SteeredFixture {
protected:
    Parked()
        : SteeredFixture({"Bare", WindowManager::none}) {}
};

TEST_F(Parked, StaysAsItIsWhateverALateWindowManagerMakesOfIt) {
    startSteered("kestrove.autoStart=true\n" + onlyDisplay("RIGHT"));
    ASSERT_TRUE(presents(right, "shown"));
    ASSERT_TRUE(parks());
    const auto place = settledPlace();
    // What mutter did of what it was asked for before the window left it.
    const std::array<std::uint32_t, 4> late{100, 50, 405, 324};
    xcb_configure_window(desktop.connection(), window(),
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         late.data());
    sync(desktop.connection());
    EXPECT_TRUE(waitUntil([&] {
        const auto now = outputPlace();
        return now.x == place.x && now.y == place.y && now.width == place.width &&
               now.height == place.height;
    }));
    right.paint({200, 100, 300, 250}, 0xff406080);
    EXPECT_TRUE(presents(right, "put right"));
    EXPECT_TRUE(isParked());
}

} // namespace
} // namespace kestrove::test

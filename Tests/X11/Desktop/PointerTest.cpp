#include "Platform/X11/Pointer.h"
#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Desktop/X11Fixture.h"

#include <unistd.h>

namespace kestrove::x11 {
namespace {

class PointerTest : public X11Fixture {
protected:
    explicit PointerTest(test::WindowManager manager = test::WindowManager::none)
        : X11Fixture(manager) {}
    void SetUp() override {
        desktop.server().movePointer(1000, 700);
        settle();
        global = 0;
        local = 0;
    }

    /// A process that is neither ours nor the test's windows' by default.
    static std::uint32_t anotherProcess() { return static_cast<std::uint32_t>(getppid()); }

    MonitorLayout layout{*connection};
    RawMotion motion{*connection};
    Pointer pointer{*connection, layout, motion};
    int global = 0;
    int local = 0;
    Subscription globalMonitor = pointer.addGlobalMovedMonitor([this] { ++global; });
    Subscription localMonitor = pointer.addLocalMovedMonitor([this] { ++local; });
};

TEST_F(PointerTest, IsWhereItWasMovedTo) {
    EXPECT_EQ(pointer.location(), (Point{1000, 99}));
    desktop.server().movePointer(0, 0);
    EXPECT_EQ(pointer.location(), (Point{0, 799}));
    desktop.server().movePointer(2559, 799);
    EXPECT_EQ(pointer.location(), (Point{2559, 0}));
}

TEST_F(PointerTest, TellsWhomItMovedOver) {
    const auto ours = makeWindow({.geometry = {100, 100, 200, 150}});
    const auto theirs =
        makeWindow({.geometry = {400, 100, 200, 150}, .processIdentifier = anotherProcess()});
    settle();
    desktop.server().movePointer(150, 150);
    EXPECT_TRUE(loop.spinUntil([&] { return local == 1; }));
    desktop.server().movePointer(450, 150);
    EXPECT_TRUE(loop.spinUntil([&] { return global == 1; }));
    desktop.server().movePointer(151, 150);
    EXPECT_TRUE(loop.spinUntil([&] { return local == 2; }));
    desktop.server().movePointer(800, 600);
    EXPECT_TRUE(loop.spinUntil([&] { return global == 2; }));
    EXPECT_EQ(local, 2);
}

TEST_F(PointerTest, TellsOnceOfAllTheMotionThatHadArrived) {
    settle();
    for (int x = 0; x < 50; ++x)
        desktop.server().movePointer(x, 300);
    settle();
    EXPECT_EQ(global, 1);
    EXPECT_EQ(local, 0);
}

TEST_F(PointerTest, IsSilentWhileItIsPushedAgainstAnEdge) {
    settle();
    desktop.server().movePointer(0, 300);
    settle();
    ASSERT_EQ(global, 1);
    desktop.server().movePointer(0, 300);
    settle();
    EXPECT_EQ(global, 1);
    desktop.server().movePointer(1, 300);
    settle();
    EXPECT_EQ(global, 2);
}

TEST_F(PointerTest, IsToldAlsoWhileAnotherProgramHasGrabbedIt) {
    const auto theirs = makeWindow({.processIdentifier = anotherProcess()});
    auto* const program = theirs->connection();
    const test::Reply grab(xcb_grab_pointer_reply(
        program,
        xcb_grab_pointer(program, 0, theirs->id(), XCB_EVENT_MASK_POINTER_MOTION,
                         XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_WINDOW_NONE, XCB_CURSOR_NONE,
                         XCB_CURRENT_TIME),
        nullptr));
    ASSERT_EQ(grab->status, XCB_GRAB_STATUS_SUCCESS);
    desktop.server().movePointer(10, 10);
    EXPECT_TRUE(loop.spinUntil([&] { return global == 1; }));
}

TEST_F(PointerTest, IsToldWhenAProgramPutsItOntoAnotherWindowOrBesideIt) {
    const auto left =
        makeWindow({.geometry = {100, 100, 200, 150}, .processIdentifier = anotherProcess()});
    settle();
    // Comes after we began to listen.
    const auto right =
        makeWindow({.geometry = {1400, 100, 200, 150}, .processIdentifier = anotherProcess()});
    settle();
    const auto warp = [&](std::int16_t x, std::int16_t y) {
        xcb_warp_pointer(desktop.connection(), XCB_WINDOW_NONE, desktop.root(), 0, 0, 0, 0, x, y);
        xcb_flush(desktop.connection());
    };
    warp(150, 150);
    EXPECT_TRUE(loop.spinUntil([&] { return global == 1; }));
    warp(1450, 150);
    EXPECT_TRUE(loop.spinUntil([&] { return global == 2; }));
    warp(900, 700);
    EXPECT_TRUE(loop.spinUntil([&] { return global == 3; }));
    EXPECT_EQ(pointer.location(), (Point{900, 99}));
    EXPECT_EQ(local, 0);
}

TEST_F(PointerTest, IsNotWatchedOnceNobodyListens) {
    settle();
    globalMonitor.cancel();
    desktop.server().movePointer(10, 10);
    settle();
    EXPECT_EQ(global, 0);
    localMonitor.cancel();
    settle();
    int events = 0;
    const auto counter = connection->events.subscribe([&](const auto&) { ++events; });
    desktop.server().movePointer(20, 20);
    settle();
    EXPECT_EQ(events, 0);
    globalMonitor = pointer.addGlobalMovedMonitor([this] { ++global; });
    desktop.server().movePointer(30, 30);
    EXPECT_TRUE(loop.spinUntil([&] { return global == 1; }));
}

TEST_F(PointerTest, MayLoseAMonitorInsideItsCallbackAndBeOutlivedByOne) {
    auto ending = std::make_unique<Pointer>(*connection, layout, motion);
    Subscription once;
    int told = 0;
    once = ending->addGlobalMovedMonitor([&] {
        ++told;
        once.cancel();
    });
    auto outliving = ending->addLocalMovedMonitor([] {});
    settle();
    desktop.server().movePointer(10, 10);
    EXPECT_TRUE(loop.spinUntil([&] { return told == 1; }));
    ending.reset();
    outliving.cancel();
    desktop.server().movePointer(20, 20);
    EXPECT_TRUE(loop.spinUntil([&] { return global == 2; }));
    EXPECT_EQ(told, 1);
}

TEST_F(PointerTest, ComesBackWithTheConnection) {
    const auto before = pointer.location();
    loseConnection();
    EXPECT_EQ(pointer.location().x, before.x);
    ASSERT_TRUE(connection->reopen());
    settle();
    desktop.server().movePointer(10, 10);
    EXPECT_TRUE(loop.spinUntil([&] { return global == 1; }));
    EXPECT_EQ(pointer.location(), (Point{10, 789}));
}

class ManagedPointerTest : public PointerTest {
protected:
    ManagedPointerTest()
        : PointerTest(test::WindowManager::openbox) {}
};

TEST_F(ManagedPointerTest, CountsTheFrameOfOurWindowAsOurs) {
    const auto ours = makeWindow({.geometry = {300, 200, 400, 250}});
    settle();
    desktop.server().movePointer(400, 300);
    EXPECT_TRUE(loop.spinUntil([&] { return local == 1; }));
}

} // namespace
} // namespace kestrove::x11

#include "Tests/Support/PixelReader/PixelReader.h"
#include "Tests/X11/Sources/SourcesFixture.h"

#include <algorithm>
#include <fmt/format.h>

namespace kestrove::test {
namespace {

constexpr Color green = 0xff34c759;

/// The whole application marks what it shares.
class SourceOverlay : public SourcesFixture {
protected:
    void share(const Program& program) {
        settings().followMode.set(FollowMode::manual);
        tick(program.source());
        start();
        ASSERT_TRUE(isActive(program.source()));
    }

    /// Nothing, beside the screen.
    [[nodiscard]] static Color pixel(int x, int y) {
        if (x < 0 || y < 0 || x >= 2 * leftPlace.width || y >= leftPlace.height)
            return 0;
        return readPixels(desktop().connection(), desktop().root(),
                          {static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 1, 1})
            .pixel(0, 0);
    }

    /// Four pixels of line in the middle of a side, and none beside them.
    [[nodiscard]] static bool hasLeftLine(const xcb_rectangle_t& place, int y) {
        const bool isAtEdge = place.x == 0;
        return pixel(place.x, y) == green && pixel(place.x + 3, y) == green &&
               pixel(place.x + 4, y) != green && (isAtEdge || pixel(place.x - 1, y) != green);
    }
    [[nodiscard]] static bool hasBottomLine(const xcb_rectangle_t& place, int x) {
        const int end = place.y + place.height;
        return pixel(x, end - 1) == green && pixel(x, end - 4) == green &&
               pixel(x, end - 5) != green;
    }
    [[nodiscard]] static bool isMarked(const xcb_rectangle_t& place) {
        return hasLeftLine(place, place.y + place.height - 60) &&
               hasBottomLine(place, place.x + place.width - 60);
    }
    [[nodiscard]] static bool isNothingMarked() {
        const auto screen = readPixels(desktop().connection(), desktop().root());
        return std::ranges::find(screen.pixels, green) == screen.pixels.end();
    }

    [[nodiscard]] testing::AssertionResult marks(const xcb_rectangle_t& place) {
        if (loop.runUntil([&] { return isMarked(place); }))
            return testing::AssertionSuccess();
        return testing::AssertionFailure()
               << fmt::format("no frame around {},{}", place.x, place.y);
    }
    /// Where it is by then: the window manager may still be placing it.
    [[nodiscard]] testing::AssertionResult marks(const Program& program) {
        if (loop.runUntil([&] { return isMarked(program.window->geometry()); }))
            return testing::AssertionSuccess();
        const auto place = program.window->geometry();
        return testing::AssertionFailure()
               << fmt::format("no frame around the window at {},{}", place.x, place.y);
    }
    [[nodiscard]] testing::AssertionResult marksNothing() {
        if (loop.runUntil(isNothingMarked))
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "a frame is left";
    }
};

TEST_F(SourceOverlay, MarksTheSharedDisplayUntilTheSessionEnds) {
    EXPECT_TRUE(isNothingMarked());
    start();
    EXPECT_TRUE(marks(leftPlace));
    EXPECT_EQ(controller().selfCaptureWindowIDs().size(), 2U);
    EXPECT_TRUE(shows(leftColor));
    controller().stop();
    EXPECT_TRUE(marksNothing());
}

TEST_F(SourceOverlay, GoesToTheDisplayThatIsSharedNext) {
    settings().followMode.set(FollowMode::mouse);
    start();
    ASSERT_TRUE(marks(leftPlace));
    server().movePointer(1800, 500);
    EXPECT_TRUE(marks(rightPlace));
    EXPECT_NE(pixel(1, 500), green);
}

TEST_F(SourceOverlay, GoesWhenItsDisplayIsUnplugged) {
    settings().followMode.set(FollowMode::mouse);
    server().movePointer(1800, 500);
    start();
    ASSERT_TRUE(marks(rightPlace));
    server().removeMonitor("RIGHT");
    EXPECT_TRUE(loop.runUntil([] { return pixel(1281, 500) != green; }));
}

TEST_F(SourceOverlay, FollowsTheSharedWindow) {
    const auto shared = startProgram("shared", {700, 400, 400, 300}, 0xffff0000);
    share(shared);
    ASSERT_TRUE(marks(shared));
    shared.window->move(600, 420);
    EXPECT_TRUE(marks(shared));
    // Over both displays.
    shared.window->move(1100, 430);
    EXPECT_TRUE(marks(shared));
    shared.window->resize(300, 320);
    ASSERT_TRUE(loop.runUntil([&] { return shared.window->geometry().width == 300; }));
    EXPECT_TRUE(marks(shared));
    EXPECT_TRUE(shows(shared.color)) << "the frame is in the picture";
}

TEST_F(SourceOverlay, GoesWhenTheSharedWindowIsCoveredAndComesBackWithIt) {
    const auto shared = startProgram("shared", {700, 400, 400, 300}, 0xffff0000);
    share(shared);
    ASSERT_TRUE(marks(shared));
    // With its decorations well over the shared one.
    const auto cover = startProgram("cover", {650, 350, 500, 400}, 0xff0000ff);
    EXPECT_TRUE(marksNothing());
    cover.window->move(900, 350);
    EXPECT_TRUE(loop.runUntil([&] { return hasLeftLine(shared.window->geometry(), 600); }))
        << "a part of it is seen";
    cover.window->unmap();
    EXPECT_TRUE(marks(shared));
}

TEST_F(SourceOverlay, GoesWhenTheSharedWindowIsMinimisedOrClosed) {
    const auto shared = startProgram("shared", {700, 400, 400, 300}, 0xffff0000);
    share(shared);
    ASSERT_TRUE(marks(shared));
    minimise(shared);
    EXPECT_TRUE(marksNothing());
    activate(shared);
    EXPECT_TRUE(marks(shared));
    shared.window->destroy();
    EXPECT_TRUE(marksNothing());
}

TEST_F(SourceOverlay, StaysAboveWindowsThatAreRaised) {
    start();
    ASSERT_TRUE(marks(leftPlace));
    const auto other = startProgram("other", {-20, 500, 300, 200}, 0xff0000ff);
    EXPECT_TRUE(loop.runUntil([] { return pixel(1, 600) == green && pixel(4, 600) != green; }));
    activate(other);
    EXPECT_TRUE(loop.runUntil([] { return pixel(1, 600) == green; }));
}

} // namespace
} // namespace kestrove::test

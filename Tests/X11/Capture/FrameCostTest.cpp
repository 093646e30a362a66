// What a frame asks of the X server, counted by the server itself: requests, bytes, draws and
// pixels are the same on every machine, so that what costs more than before shows without a clock.

#include "Tests/X11/Capture/CaptureFixture.h"
#include "Tests/X11/Capture/RequestRecorder.h"

#include <array>
#include <functional>
#include <utility>

namespace kestrove::test {
namespace {

constexpr int steps = 12;

constexpr std::int64_t area(std::int64_t width, std::int64_t height) {
    return width * height;
}

constexpr auto blockArea = area(200, 200);
constexpr auto videoArea = area(1200, 700);

class FrameCost : public testing::Test {
protected:
    [[nodiscard]] const std::string& displayName() { return test.desktop.displayName(); }

    /// A window that fills the left display, or lies on it.
    [[nodiscard]] std::unique_ptr<TestWindow> source(const xcb_rectangle_t& geometry) {
        return std::make_unique<TestWindow>(
            displayName(), TestWindow::Options{.geometry = geometry, .overrideRedirect = true});
    }

    /// `change` is one drawing of another program. The server has drawn each frame before the next
    /// change, else it would draw both at once.
    [[nodiscard]] Traffic costOf(const std::function<void(int step)>& change) {
        test.settle();
        RequestRecorder recorder(displayName(), test.connection->get());
        Traffic seen;
        for (int step = 0; step < steps; ++step) {
            const int before = test.frames;
            change(step);
            EXPECT_TRUE(test.loop.spinUntil([&] { return test.frames > before; }));
            seen += recorder.take();
            EXPECT_EQ(test.frames, before + 1);
        }
        return seen;
    }

    /// `part` of the window, in another color each time.
    [[nodiscard]] Traffic costOfFilling(TestWindow& window, const xcb_rectangle_t& part) {
        return costOf([&](int step) { window.fillRectangle(part, static_cast<Color>(step)); });
    }

    /// Neither a frame nor anything asked of the server nor a word from it.
    void expectNothing() {
        test.settle();
        RequestRecorder recorder(displayName(), test.connection->get());
        const int before = test.frames;
        test.listen();
        EXPECT_FALSE(test.loop.hasTimers());
        const auto seen = recorder.take();
        EXPECT_EQ(test.frames, before);
        EXPECT_EQ(seen.requests, 0);
        EXPECT_EQ(seen.events, 0);
        EXPECT_EQ(seen.replies, 0);
    }

    CaptureDesktop test;
};

/// `frame` is what one may cost; events at most, since the server may tell of several things at
/// once.
void expectPerFrame(const Traffic& seen, const Traffic& frame) {
    EXPECT_EQ(seen.requests, frame.requests * steps);
    EXPECT_EQ(seen.bytes, frame.bytes * steps);
    EXPECT_EQ(seen.draws, frame.draws * steps);
    EXPECT_EQ(seen.pixels, frame.pixels * steps);
    EXPECT_EQ(seen.replies, frame.replies * steps);
    // A word or two from before the first may be among them.
    EXPECT_LE(seen.events, frame.events * steps + 2);
}

constexpr xcb_rectangle_t wholeLeft{0, 0, 1280, 800};

TEST_F(FrameCost, OfABlockInADisplayOneToOne) {
    const auto window = source(wholeLeft);
    test.openOutput({1280, 0, 1280, 800});
    test.start(test.display(0));
    const auto seen = costOfFilling(*window, {100, 50, 200, 200});
    expectPerFrame(
        seen,
        {.requests = 5, .bytes = 100, .draws = 1, .pixels = blockArea, .replies = 0, .events = 2});
}

TEST_F(FrameCost, OfAVideoInADisplayOneToOne) {
    const auto window = source({40, 30, 1200, 700});
    test.openOutput({1280, 0, 1280, 800});
    test.start(test.display(0));
    const auto seen = costOfFilling(*window, {0, 0, 1200, 700});
    expectPerFrame(
        seen,
        {.requests = 5, .bytes = 100, .draws = 1, .pixels = videoArea, .replies = 0, .events = 2});
}

TEST_F(FrameCost, OfAVideoThatIsTheWindowOneToOne) {
    const auto window = source({40, 30, 1200, 700});
    test.openOutput({1280, 0, 1200, 700});
    test.start(WindowFilter(window->id()));
    const auto seen = costOfFilling(*window, {0, 0, 1200, 700});
    expectPerFrame(
        seen,
        {.requests = 3, .bytes = 72, .draws = 1, .pixels = videoArea, .replies = 0, .events = 1});
}

TEST_F(FrameCost, OfABlockInTheWindowOneToOne) {
    const auto window = source({40, 30, 1200, 700});
    test.openOutput({1280, 0, 1200, 700});
    test.start(WindowFilter(window->id()));
    const auto seen = costOfFilling(*window, {100, 50, 200, 200});
    expectPerFrame(
        seen,
        {.requests = 3, .bytes = 72, .draws = 1, .pixels = blockArea, .replies = 0, .events = 1});
}

/// As terminals do it: what is there moves up, and the last line is drawn.
void scroll(const TestWindow& window, std::uint16_t width, std::uint16_t height, Color color) {
    constexpr std::uint16_t line = 20;
    const auto rest = static_cast<std::uint16_t>(height - line);
    auto* const xcb = window.connection();
    const xcb_gcontext_t context = xcb_generate_id(xcb);
    const std::array<std::uint32_t, 2> values{color, 0};
    xcb_create_gc(xcb, context, window.id(), XCB_GC_FOREGROUND | XCB_GC_GRAPHICS_EXPOSURES,
                  values.data());
    xcb_copy_area(xcb, window.id(), window.id(), context, 0, line, 0, 0, width, rest);
    const xcb_rectangle_t last{0, static_cast<std::int16_t>(rest), width, line};
    xcb_poly_fill_rectangle(xcb, window.id(), context, 1, &last);
    xcb_free_gc(xcb, context);
    xcb_flush(xcb);
}

TEST_F(FrameCost, OfTextThatScrollsInTheWindowOneToOne) {
    const auto window = source({40, 30, 1200, 700});
    test.openOutput({1280, 0, 1200, 700});
    test.start(WindowFilter(window->id()));
    test.settle();
    RequestRecorder recorder(displayName(), test.connection->get());
    const int first = test.frames;
    Traffic seen;
    for (int step = 0; step < steps; ++step) {
        const int before = test.frames;
        scroll(*window, 1200, 700, static_cast<Color>(step));
        EXPECT_TRUE(test.loop.spinUntil([&] { return test.frames > before; }));
        seen += recorder.take();
    }
    // The server may have told the second of the two drawings later, for a frame of its own.
    EXPECT_TRUE(test.loop.spinUntil([&] { return !test.loop.hasTimers(); }));
    test.listen();
    EXPECT_FALSE(test.loop.hasTimers());
    seen += recorder.take();
    const int frames = test.frames - first;
    EXPECT_EQ(seen.requests, 3 * frames);
    EXPECT_EQ(seen.bytes, 72 * frames);
    EXPECT_EQ(seen.draws, frames);
    EXPECT_LE(seen.pixels, videoArea * frames);
    EXPECT_EQ(seen.replies, 0);
    EXPECT_LE(seen.events, 2 * steps + 2);
}

TEST_F(FrameCost, IsNothingOnAStillDisplay) {
    const auto window = source(wholeLeft);
    const auto mark = source({0, 0, 1280, 4});
    test.openOutput({1280, 0, 1280, 800});
    test.start(test.display(0, {mark->id()}), CaptureDesktop::configurationAt(60, true));
    expectNothing();
}

// The screen is watched, and what we have drawn on it ourselves changes nothing.
TEST_F(FrameCost, IsNothingOnAStillDisplayWithTheOutputOnIt) {
    const auto window = source({40, 30, 1200, 700});
    test.openOutput({400, 300, 640, 400});
    test.start(test.display(0, {test.outputWindow()}), CaptureDesktop::configurationAt(60, true));
    expectNothing();
}

TEST_F(FrameCost, OfADisplayReducedByLessThanTwo) {
    const auto window = source(wholeLeft);
    test.openOutput({1280, 0, 960, 600});
    test.start(test.display(0));
    const auto seen = costOfFilling(*window, {96, 48, 200, 200});
    // The neighbours that the filter mixes in are one more pixel on each side.
    expectPerFrame(seen, {.requests = 5,
                          .bytes = 128,
                          .draws = 2,
                          .pixels = blockArea + area(152, 152),
                          .replies = 0,
                          .events = 2});
}

TEST_F(FrameCost, OfADisplayReducedByMoreThanTwo) {
    const auto window = source(wholeLeft);
    test.openOutput({1280, 0, 320, 200});
    test.start(test.display(0));
    const auto seen = costOfFilling(*window, {96, 48, 200, 200});
    // Painted once, halved once, drawn once.
    expectPerFrame(seen, {.requests = 7,
                          .bytes = 184,
                          .draws = 3,
                          .pixels = blockArea + area(100, 100) + area(52, 52),
                          .replies = 0,
                          .events = 2});
}

TEST_F(FrameCost, OfABlockUnderTheOutput) {
    const auto window = source(wholeLeft);
    test.openOutput({400, 300, 640, 400});
    test.start(test.display(0, {test.outputWindow()}));
    const auto seen = costOfFilling(*window, {500, 350, 200, 200});
    expectPerFrame(seen, {.requests = 5,
                          .bytes = 128,
                          .draws = 2,
                          .pixels = blockArea + area(102, 102),
                          .replies = 0,
                          .events = 2});
}

// The screen is not read, and so our own drawing on it is not told of.
TEST_F(FrameCost, OfABlockInAWindowThatFillsTheMarkedDisplay) {
    const auto window = source(wholeLeft);
    const auto mark = source({0, 0, 1280, 4});
    test.openOutput({1280, 0, 1280, 800});
    test.start(test.display(0, {mark->id()}));
    const auto seen = costOfFilling(*window, {100, 50, 200, 200});
    expectPerFrame(
        seen,
        {.requests = 3, .bytes = 72, .draws = 1, .pixels = blockArea, .replies = 0, .events = 1});
}

TEST_F(FrameCost, IsOneWakeUpWhereAChangeComesInOnePiece) {
    const auto window = source({40, 30, 1200, 700});
    test.openOutput({1280, 0, 1200, 700});
    test.start(WindowFilter(window->id()));
    // What a timer makes does not come between these two.
    int beforeEvents = 0;
    int shownAtOnce = 0;
    const auto drained =
        test.connection->eventsDrained.subscribe([&] { beforeEvents = test.frames; });
    const auto acted = test.connection->eventsActedOn.subscribe(
        [&] { shownAtOnce += test.frames - std::exchange(beforeEvents, test.frames); });
    test.settle();
    test.loop.holdClock();
    for (int step = 0; step < steps; ++step) {
        constexpr Seconds manyIntervals(1);
        test.loop.advance(manyIntervals);
        test.hearAll();
        shownAtOnce = 0;
        window->fillRectangle({0, 0, 200, 200}, static_cast<Color>(step));
        test.hearAll();
        EXPECT_EQ(shownAtOnce, 1);
    }
}

TEST_F(FrameCost, OfABlockBesideTheOutputOnTheSameDisplay) {
    const auto window = source(wholeLeft);
    test.openOutput({400, 300, 640, 400});
    test.start(test.display(0, {test.outputWindow()}));
    const auto seen = costOfFilling(*window, {100, 50, 200, 200});
    expectPerFrame(seen, {.requests = 5,
                          .bytes = 128,
                          .draws = 2,
                          .pixels = blockArea + area(102, 102),
                          .replies = 0,
                          .events = 2});
}

TEST_F(FrameCost, IsTheSameAmongManyWindows) {
    constexpr int manyWindows = 150;
    std::vector<std::unique_ptr<TestWindow>> others;
    others.reserve(manyWindows);
    for (int index = 0; index < manyWindows; ++index)
        others.push_back(source({static_cast<std::int16_t>(index * 37 % 1000),
                                 static_cast<std::int16_t>(index * 23 % 600), 280, 200}));
    // What has changed where nobody looks.
    constexpr int someMore = 40;
    std::vector<std::unique_ptr<TestWindow>> beside;
    beside.reserve(someMore);
    for (int index = 0; index < someMore; ++index)
        beside.push_back(source({static_cast<std::int16_t>(1300 + index * 29),
                                 static_cast<std::int16_t>(index * 15), 15, 10}));
    const auto window = source({0, 0, 600, 400});
    test.openOutput({1280, 0, 1280, 800});
    test.start(test.display(0));
    for (const auto& each : beside)
        each->fillRectangle({0, 0, 15, 10}, 0xFF00FF00);
    const auto seen = costOfFilling(*window, {100, 50, 200, 200});
    expectPerFrame(
        seen,
        {.requests = 5, .bytes = 100, .draws = 1, .pixels = blockArea, .replies = 0, .events = 2});
}

TEST_F(FrameCost, OfAMovedPointer) {
    const auto window = source(wholeLeft);
    test.openOutput({1280, 0, 1280, 800});
    test.desktop.server().movePointer(600, 400);
    test.start(test.display(0), CaptureDesktop::configurationAt(60, true));
    const auto seen =
        costOf([&](int step) { test.desktop.server().movePointer(50 + 40 * step, 70); });
    // The question for the position is one round trip; the pointer's image is already there.
    EXPECT_EQ(seen.requests, 11 * steps);
    EXPECT_EQ(seen.bytes, 260 * steps);
    EXPECT_EQ(seen.draws, 4 * steps);
    constexpr int largestCursor = 64 * 64; // pixels
    EXPECT_LE(seen.pixels, 5 * largestCursor * steps);
    EXPECT_EQ(seen.replies, steps);
    EXPECT_LE(seen.events, 2 * steps);
}

} // namespace
} // namespace kestrove::test

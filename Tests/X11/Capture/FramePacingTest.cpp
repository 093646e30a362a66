// When a stream makes its frames, by a clock that stands still until the test moves it: what the
// server tells is real, and every wait is exactly as long as it says.

#include "Tests/X11/Capture/CaptureFixture.h"

#include <functional>

namespace kestrove::test {
namespace {

constexpr xcb_rectangle_t place{0, 0, 600, 400};
constexpr xcb_rectangle_t onePart{0, 0, 200, 200};
constexpr xcb_rectangle_t anotherPart{300, 0, 200, 200};
constexpr Seconds interval{1.0 / 60};
/// What a change is given to become whole where it comes in steps.
constexpr Seconds grain{0.001};
constexpr Seconds longTime{1};

class FramePacing : public testing::Test {
protected:
    void SetUp() override {
        test.openOutput({1280, 0, place.width, place.height});
        test.start(WindowFilter(m_window.id()));
        test.settle();
        test.loop.holdClock();
    }

    /// How many frames a change makes before any time goes by.
    [[nodiscard]] int framesOfChanging(const xcb_rectangle_t& part) {
        return framesOf([&] { m_window.fillRectangle(part, ++m_color); });
    }
    [[nodiscard]] int framesWithin(Seconds duration) {
        return framesOf([&] { test.loop.advance(duration); });
    }
    [[nodiscard]] testing::AssertionResult outputIsTheWindow() const {
        return samePixels(test.output(), test.screen(place), "the window");
    }

    CaptureDesktop test;

private:
    [[nodiscard]] int framesOf(const std::function<void()>& work) {
        const int before = test.frames;
        work();
        test.hearAll();
        return test.frames - before;
    }

    TestWindow m_window{test.desktop.displayName(),
                        TestWindow::Options{.geometry = place, .overrideRedirect = true}};
    Color m_color = 0;
};

TEST_F(FramePacing, ShowsAChangeAtOnceAndTheNextAnIntervalLater) {
    EXPECT_EQ(framesWithin(longTime), 0);
    EXPECT_EQ(framesOfChanging(onePart), 1);
    EXPECT_TRUE(outputIsTheWindow());
    EXPECT_EQ(framesWithin(3 * grain), 0);
    EXPECT_EQ(framesOfChanging(anotherPart), 0);
    // After a pause it may come two milliseconds sooner.
    EXPECT_EQ(framesWithin(interval - 6 * grain), 0);
    EXPECT_FALSE(outputIsTheWindow());
    EXPECT_EQ(framesWithin(3 * grain), 1);
    EXPECT_TRUE(outputIsTheWindow());
    EXPECT_EQ(framesWithin(longTime), 0);
}

TEST_F(FramePacing, ShowsTheRestOfAChangeAMomentAfterItsFirstPart) {
    EXPECT_EQ(framesWithin(longTime), 0);
    EXPECT_EQ(framesOfChanging(onePart), 1);
    EXPECT_EQ(framesOfChanging(anotherPart), 0);
    EXPECT_FALSE(outputIsTheWindow());
    EXPECT_EQ(framesWithin(grain), 1);
    EXPECT_TRUE(outputIsTheWindow());
}

TEST_F(FramePacing, WaitsForChangesToBeWholeAfterOneThatWasNot) {
    EXPECT_EQ(framesWithin(longTime), 0);
    EXPECT_EQ(framesOfChanging(onePart), 1);
    EXPECT_EQ(framesOfChanging(anotherPart), 0);
    EXPECT_EQ(framesWithin(grain), 1);
    constexpr int cautious = 2;
    for (int frame = 0; frame < cautious; ++frame) {
        EXPECT_EQ(framesWithin(longTime), 0);
        EXPECT_EQ(framesOfChanging(onePart), 0);
        EXPECT_EQ(framesOfChanging(anotherPart), 0);
        EXPECT_EQ(framesWithin(grain), 1);
        EXPECT_TRUE(outputIsTheWindow());
    }
    EXPECT_EQ(framesWithin(longTime), 0);
    EXPECT_EQ(framesOfChanging(onePart), 1);
}

TEST_F(FramePacing, ShowsASourceOfTheSameRateWheneverItChanges) {
    EXPECT_EQ(framesWithin(longTime), 0);
    constexpr int changes = 30;
    for (int change = 0; change < changes; ++change) {
        EXPECT_EQ(framesOfChanging(onePart), 1);
        EXPECT_EQ(framesWithin(interval), 0);
    }
}

// Whoever asked for it goes on to mark the source, which has the server busy for longer.
TEST_F(FramePacing, ShowsANewTargetBeforeItSaysThatItHasIt) {
    EXPECT_EQ(test.framesWhenAnswered, 1);
    test.retarget(test.display(0));
    test.hearAll();
    const int before = test.frames;
    test.reconfigure(CaptureDesktop::configurationAt(30));
    EXPECT_EQ(test.framesWhenAnswered, before + 1);
    test.hearAll();
    EXPECT_EQ(test.frames, before + 1);
}

} // namespace
} // namespace kestrove::test

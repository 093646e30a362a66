#include "Platform/X11/Capture/FramePacer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <ranges>
#include <vector>

namespace kestrove::x11 {
namespace {

constexpr Seconds interval{1.0 / 60};
/// Of timers, and what a change is given to become whole where it comes in steps.
constexpr Seconds grain{0.001};
/// What two frames may be closer than the interval.
constexpr Seconds sooner = 2 * grain;
constexpr Seconds now{7};

TEST(FramePacer, MakesTheFirstFrameAtOnceAndTheNextAnIntervalLater) {
    FramePacer pacer;
    EXPECT_EQ(pacer.wait(now), Seconds(0));
    pacer.made(now, interval);
    EXPECT_NEAR(pacer.wait(now + 3 * grain).count(), (interval - sooner - 3 * grain).count(), 1e-9);
    EXPECT_EQ(pacer.wait(now + interval), Seconds(0));
}

TEST(FramePacer, DoesNotWaitForTheIntervalAfterARestart) {
    FramePacer pacer;
    pacer.made(now, interval);
    pacer.restart();
    EXPECT_EQ(pacer.wait(now + 3 * grain), Seconds(0));
}

TEST(FramePacer, CountsAfterAPauseFromTheFrameThatEndedIt) {
    FramePacer pacer;
    pacer.made(now, interval);
    pacer.made(Seconds(9), interval);
    EXPECT_NEAR(pacer.wait(Seconds(9) + 3 * grain).count(), (interval - sooner - 3 * grain).count(),
                1e-9);
}

/// A source whose changes come in one piece, or in two within a millisecond.
class Source {
public:
    Source() { m_pacer.made(m_now, interval); }

    /// After a pause. Returns how long the frame waited for it.
    Seconds change() {
        m_now += 3 * interval;
        const auto wait = m_pacer.wait(m_now);
        m_now += wait;
        m_pacer.made(m_now, interval);
        return wait;
    }
    Seconds changeInTwo() {
        const auto wait = change();
        if (wait == Seconds(0)) {
            m_now += grain;
            m_waitForTheRest = m_pacer.wait(m_now);
            m_now += m_waitForTheRest;
            m_pacer.made(m_now, interval);
        }
        return wait;
    }
    /// At the last change of which a part was shown.
    [[nodiscard]] Seconds waitForTheRest() const { return m_waitForTheRest; }

private:
    FramePacer m_pacer;
    Seconds m_now = now;
    Seconds m_waitForTheRest{0};
};

TEST(FramePacer, WaitsForChangesToBeWholeTheLongerTheMoreOftenTheyAreNot) {
    Source source;
    for (const int frames : {2, 4, 8, 16, 32, 64, 64}) {
        EXPECT_EQ(source.changeInTwo(), Seconds(0));
        EXPECT_EQ(source.waitForTheRest(), grain);
        for (int frame = 0; frame < frames; ++frame)
            EXPECT_EQ(source.changeInTwo(), grain) << frame << " of " << frames;
    }
}

TEST(FramePacer, TrustsASourceAgainOnceAChangeWasWhole) {
    Source source;
    for (const int frames : {2, 4, 8}) {
        EXPECT_EQ(source.changeInTwo(), Seconds(0));
        for (int frame = 0; frame < frames; ++frame)
            source.changeInTwo();
    }
    for (int change = 0; change < 10; ++change)
        EXPECT_EQ(source.change(), Seconds(0)) << change;
    EXPECT_EQ(source.changeInTwo(), Seconds(0));
    EXPECT_EQ(source.change(), grain);
    EXPECT_EQ(source.change(), grain);
    EXPECT_EQ(source.change(), Seconds(0));
}

TEST(FramePacer, ShowsTheRestOfAChangeBesideTheFramesOfTheInterval) {
    FramePacer pacer;
    pacer.made(now, interval);
    const auto changed = now + interval;
    EXPECT_EQ(pacer.wait(changed), Seconds(0));
    pacer.made(changed, interval);
    EXPECT_EQ(pacer.wait(changed + grain), grain);
    pacer.made(changed + 2 * grain, interval);
    EXPECT_NEAR(pacer.wait(changed + 3 * grain).count(), (interval - sooner - 3 * grain).count(),
                1e-9)
        << "once";
}

TEST(FramePacer, TakesNothingForTheRestOfAChangeThatIsToldAfterTheFirstFrame) {
    FramePacer pacer;
    EXPECT_EQ(pacer.wait(now), Seconds(0));
    pacer.made(now, interval);
    EXPECT_GT(pacer.wait(now + grain), interval / 2);
}

struct Frame {
    Seconds changed;
    Seconds made;
};

/// The frames of a source that changes at these times, by a loop whose timers go by milliseconds,
/// and which takes a moment to wake up.
std::vector<Frame> frames(const std::vector<Seconds>& changes) {
    constexpr Seconds awakeAfter{0.0001};
    FramePacer pacer;
    std::vector<Frame> made;
    for (const auto changed : changes) {
        if (!made.empty() && changed < made.back().made)
            continue; // part of the frame that is made then
        const auto told = changed + awakeAfter;
        const auto wait = pacer.wait(told);
        const auto timer = Seconds(std::ceil(wait.count() * 1000) / 1000) + awakeAfter;
        made.push_back({changed, wait == Seconds(0) ? told : told + timer});
        pacer.made(made.back().made, interval);
    }
    return made;
}

/// Of a source that changes `rate` times a second for as many seconds.
std::vector<Seconds> changes(int rate, int seconds) {
    const int count = rate * seconds;
    std::vector<Seconds> times;
    times.reserve(static_cast<std::size_t>(count));
    for (int change = 0; change < count; ++change)
        times.emplace_back(static_cast<double>(change) / rate + 0.0004);
    return times;
}

/// Those of `frames` but for the first 200 that came more than `most` after their changes.
std::ptrdiff_t late(const std::vector<Frame>& frames, Seconds most) {
    return std::ranges::count_if(frames | std::views::drop(200), [&](const Frame& frame) {
        return frame.made - frame.changed > most;
    });
}

TEST(FramePacer, LosesNoFrameOfASourceOfItsOwnRateThoughTimersAreLate) {
    EXPECT_EQ(frames(changes(60, 100)).size(), 6000);
}

TEST(FramePacer, ShowsTheChangesOfASourceOfItsOwnRateAtOnceWheneverTheFirstCame) {
    for (int offset = 0; offset < 17; ++offset) {
        // One frame that is no change of the source's, as after the start of a stream.
        std::vector<Seconds> times{Seconds(offset * -0.001)};
        std::ranges::copy(changes(60, 4), std::back_inserter(times));
        const auto made = frames(times);
        EXPECT_GE(made.size(), 240) << offset;
        EXPECT_EQ(late(made, grain), 0) << offset;
    }
}

TEST(FramePacer, ShowsChangesAtOnceAgainAfterOneThatCameLate) {
    auto times = changes(60, 4);
    times[20] += 0.8 * interval;
    const auto made = frames(times);
    EXPECT_EQ(made.size(), 240);
    EXPECT_EQ(late(made, grain), 0);
}

TEST(FramePacer, ShowsChangesAtOnceAgainAfterOthersInBetween) {
    for (int offset = 1; offset < 16; ++offset) {
        auto times = changes(60, 5);
        // Each takes a frame that the source's own would have needed.
        for (const std::size_t after : {20, 30, 40, 50, 60, 70, 80})
            times.push_back(times[after] + offset * grain);
        std::ranges::sort(times);
        // What was lost at the start is used up by a source that changes right after it.
        times.insert(times.begin(), Seconds(-grain));
        EXPECT_EQ(late(frames(times), 2 * grain), 0) << offset;
    }
}

TEST(FramePacer, AllowsHardlyMoreFramesThanTheIntervalDoes) {
    for (const int rate : {61, 90, 144, 1000}) {
        const auto made = frames(changes(rate, 100));
        std::size_t rests = 0;
        for (std::size_t next = 1; next < made.size(); ++next) {
            const auto gap = made[next].made - made[next - 1].made;
            if (gap < interval - sooner - Seconds(1e-9))
                ++rests;
        }
        EXPECT_LE(rests, made.size() / 60) << rate;
        EXPECT_LE(made.size() - rests, 6000 / 0.99 + 3) << rate;
        EXPECT_GE(made.size(), 5600) << rate;
    }
}

} // namespace
} // namespace kestrove::x11

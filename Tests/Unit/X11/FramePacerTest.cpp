#include "Platform/X11/Capture/FramePacer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <span>
#include <vector>

namespace kestrove::x11 {
namespace {

constexpr Seconds interval{1.0 / 60};
/// Of timers, and what a change is given to become whole.
constexpr Seconds grain{0.001};

TEST(FramePacer, MakesTheFirstFrameAMomentAfterTheChangeAndTheNextAnIntervalLater) {
    FramePacer pacer;
    EXPECT_EQ(pacer.wait(Seconds(7)), grain);
    pacer.made(Seconds(7), interval);
    EXPECT_NEAR(pacer.wait(Seconds(7)).count(), (interval - grain).count(), 1e-9);
    EXPECT_EQ(pacer.wait(Seconds(7) + interval), grain) << "for the rest of the change";
}

TEST(FramePacer, DoesNotWaitForTheIntervalAfterARestart) {
    FramePacer pacer;
    pacer.made(Seconds(7), interval);
    pacer.restart();
    EXPECT_EQ(pacer.wait(Seconds(7)), grain);
}

TEST(FramePacer, CountsAfterAPauseFromTheFrameThatEndedIt) {
    FramePacer pacer;
    pacer.made(Seconds(7), interval);
    pacer.made(Seconds(9), interval);
    EXPECT_NEAR(pacer.wait(Seconds(9)).count(), (interval - grain).count(), 1e-9);
}

TEST(FramePacer, CountsFromAFrameThatHadToBeEarly) {
    FramePacer pacer;
    for (int frame = 0; frame < 100; ++frame)
        pacer.made(Seconds(7 + frame * 0.005), interval);
    EXPECT_NEAR(pacer.wait(Seconds(7.495)).count(), interval.count(), 1e-9);
}

struct Frame {
    Seconds changed;
    Seconds made;
};

/// The frames of a source that changes at these times, by a loop whose timers go by milliseconds.
std::vector<Frame> frames(const std::vector<Seconds>& changes) {
    FramePacer pacer;
    std::vector<Frame> made;
    for (const auto changed : changes) {
        if (!made.empty() && changed < made.back().made)
            continue; // part of the frame that is made then
        const auto wait = Seconds(std::ceil(pacer.wait(changed).count() * 1000) / 1000);
        made.push_back({changed, changed + wait});
        pacer.made(changed + wait, interval);
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

TEST(FramePacer, LosesNoFrameOfASourceOfItsOwnRateThoughTimersAreLate) {
    EXPECT_EQ(frames(changes(60, 100)).size(), 6000);
}

TEST(FramePacer, ShowsTheChangesOfASourceOfItsOwnRateSoonWheneverTheFirstCame) {
    for (int offset = 0; offset < 17; ++offset) {
        // One frame that is no change of the source's, as after the start of a stream.
        std::vector<Seconds> times{Seconds(offset * -0.001)};
        std::ranges::copy(changes(60, 4), std::back_inserter(times));
        const auto made = frames(times);
        EXPECT_GE(made.size(), 240) << offset;
        for (const auto& frame : std::span(made).subspan(120))
            EXPECT_LE(frame.made - frame.changed, 3 * grain) << offset;
    }
}

TEST(FramePacer, ShowsChangesSoonAgainAfterOneThatCameLate) {
    auto times = changes(60, 4);
    times[20] += 0.8 * interval;
    const auto made = frames(times);
    EXPECT_EQ(made.size(), 240);
    for (const auto& frame : std::span(made).subspan(120))
        EXPECT_LE(frame.made - frame.changed, 3 * grain);
}

TEST(FramePacer, NeverAllowsMoreFramesThanTheIntervalDoes) {
    for (const int rate : {61, 90, 144, 1000}) {
        const auto made = frames(changes(rate, 100));
        EXPECT_LE(made.size(), 6002) << rate;
        EXPECT_GE(made.size(), 5600) << rate;
        for (std::size_t next = 1; next < made.size(); ++next) {
            EXPECT_GE(made[next].made - made[next - 1].made, interval - grain - Seconds(1e-9))
                << rate;
        }
    }
}

} // namespace
} // namespace kestrove::x11

#include "Platform/X11/Capture/FramePacer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace kestrove::x11 {
namespace {

constexpr Seconds interval{1.0 / 60};
constexpr Seconds grain{0.001};

TEST(FramePacer, LetsTheFirstFrameBeMadeAtOnceAndTheNextAnIntervalLater) {
    FramePacer pacer;
    EXPECT_LE(pacer.wait(Seconds(7)), Seconds(0));
    pacer.made(Seconds(7), interval);
    EXPECT_NEAR(pacer.wait(Seconds(7)).count(), interval.count(), 1e-9);
    EXPECT_LE(pacer.wait(Seconds(7) + interval), Seconds(0));
}

TEST(FramePacer, LetsAFrameBeMadeAtOnceAfterARestart) {
    FramePacer pacer;
    pacer.made(Seconds(7), interval);
    pacer.restart();
    EXPECT_LE(pacer.wait(Seconds(7)), Seconds(0));
    // What had been due before does not count.
    pacer.made(Seconds(7), interval);
    EXPECT_NEAR(pacer.wait(Seconds(7)).count(), interval.count(), 1e-9);
}

TEST(FramePacer, CountsAfterAPauseFromTheFrameThatEndedIt) {
    FramePacer pacer;
    pacer.made(Seconds(7), interval);
    pacer.made(Seconds(9), interval);
    EXPECT_GE(pacer.wait(Seconds(9)), interval - grain);
}

/// The times of the frames of a source that changes `rate` times a second for as many seconds, by a
/// loop whose timers go by milliseconds.
std::vector<Seconds> frames(int rate, int seconds) {
    FramePacer pacer;
    std::vector<Seconds> made;
    Seconds free{0};
    for (int change = 0; change < rate * seconds; ++change) {
        const Seconds changed(static_cast<double>(change) / rate + 0.0004);
        if (changed < free)
            continue; // part of the frame that is made then
        const auto wait = std::max(pacer.wait(changed), Seconds(0));
        const auto now = changed + Seconds(std::ceil(wait.count() * 1000) / 1000);
        pacer.made(now, interval);
        made.push_back(now);
        free = now;
    }
    return made;
}

TEST(FramePacer, LosesNoFrameOfASourceOfItsOwnRateThoughTimersAreLate) {
    EXPECT_EQ(frames(60, 100).size(), 6000);
}

TEST(FramePacer, NeverAllowsMoreFramesThanTheIntervalDoes) {
    for (const int rate : {61, 90, 144, 1000}) {
        const auto made = frames(rate, 100);
        EXPECT_LE(made.size(), 6001) << rate;
        EXPECT_GE(made.size(), 5600) << rate;
        for (std::size_t next = 1; next < made.size(); ++next)
            EXPECT_GE(made[next] - made[next - 1], interval - grain - Seconds(1e-9)) << rate;
    }
}

} // namespace
} // namespace kestrove::x11

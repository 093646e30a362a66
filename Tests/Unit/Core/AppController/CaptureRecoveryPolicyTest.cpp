#include "Core/AppController/CaptureRecoveryPolicy.h"

#include <gtest/gtest.h>

namespace kestrove {
namespace {

const auto display1 = CaptureSource::display(1);
const auto display2 = CaptureSource::display(2);
const auto display3 = CaptureSource::display(3);
const auto window2 = CaptureSource::window(2);

TEST(CaptureRecoveryPolicy, ChoosesAnotherAvailableCandidate) {
    EXPECT_EQ(
        CaptureRecoveryPolicy::nextSource(display1, {display1, display2}, {display1, display2}),
        display2);
}

TEST(CaptureRecoveryPolicy, NeverChoosesTheFailedSource) {
    EXPECT_EQ(CaptureRecoveryPolicy::nextSource(display1, {display1, display2}, {display1}),
              std::nullopt);
}

TEST(CaptureRecoveryPolicy, TheOrderOfTheCandidatesDecides) {
    EXPECT_EQ(CaptureRecoveryPolicy::nextSource(display1, {display3, display1, display2},
                                                {display1, display2, display3}),
              display3);
}

TEST(CaptureRecoveryPolicy, ADisplayIsNotTheWindowWithItsNumber) {
    EXPECT_EQ(CaptureRecoveryPolicy::nextSource(display2, {window2}, {display2}), std::nullopt);
    EXPECT_EQ(CaptureRecoveryPolicy::nextSource(display2, {window2}, {window2}), window2);
}

TEST(CaptureRecoveryPolicy, WithoutCandidatesThereIsNothingToChoose) {
    EXPECT_EQ(CaptureRecoveryPolicy::nextSource(display1, {}, {display1, display2}), std::nullopt);
}

} // namespace
} // namespace kestrove

#include "UI/SettingsView/FrameRateSteps.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace kestrove {
namespace {

using namespace FrameRateSteps;

TEST(FrameRateSteps, StayBetween15And60) {
    struct Row {
        std::int64_t rate;
        std::int64_t up;
        std::int64_t down;
    };
    constexpr std::array<Row, 11> rows{{{15, 20, 15},
                                        {30, 35, 25},
                                        {55, 60, 50},
                                        {60, 60, 55},
                                        {58, 60, 53},
                                        {17, 22, 15},
                                        {7, 15, 15},
                                        {240, 60, 60},
                                        {-3, 15, 15},
                                        {std::numeric_limits<std::int64_t>::max(), 60, 60},
                                        {std::numeric_limits<std::int64_t>::min(), 15, 15}}};
    for (const auto& row : rows) {
        EXPECT_EQ(stepped(row.rate, 1), row.up) << row.rate;
        EXPECT_EQ(stepped(row.rate, -1), row.down) << row.rate;
    }
    EXPECT_EQ(stepped(30, 10), 60);
    EXPECT_EQ(stepped(30, -10), 15);
}

TEST(FrameRateSteps, EndAtTheEnds) {
    EXPECT_FALSE(canStepUp(60));
    EXPECT_FALSE(canStepUp(240));
    EXPECT_TRUE(canStepUp(59));
    EXPECT_TRUE(canStepUp(7));
    EXPECT_FALSE(canStepDown(15));
    EXPECT_FALSE(canStepDown(7));
    EXPECT_TRUE(canStepDown(16));
    EXPECT_TRUE(canStepDown(240));
}

} // namespace
} // namespace kestrove

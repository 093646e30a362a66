#include "Core/Settings/FollowMode.h"

#include <gtest/gtest.h>

#include <vector>

namespace kestrove {
namespace {

TEST(FollowMode, HasItsRawValuesInOrder) {
    std::vector<std::string_view> texts;
    for (const auto mode : allFollowModes) {
        texts.push_back(rawValue(mode));
        EXPECT_EQ(followModeFromRawValue(rawValue(mode)), mode);
    }
    EXPECT_EQ(texts, (std::vector<std::string_view>{"mouse", "focusedApp", "manual"}));
}

TEST(FollowMode, IsFoundByTheExactTextOnly) {
    for (const auto* text : {"", "Mouse", "mouse ", "focusedapp", "MANUAL", "window"})
        EXPECT_EQ(followModeFromRawValue(text), std::nullopt) << text;
}

TEST(FollowMode, OnlyManualDoesNotFollowByItself) {
    EXPECT_TRUE(isAutoFollow(FollowMode::mouse));
    EXPECT_TRUE(isAutoFollow(FollowMode::focusedApp));
    EXPECT_FALSE(isAutoFollow(FollowMode::manual));
}

} // namespace
} // namespace kestrove

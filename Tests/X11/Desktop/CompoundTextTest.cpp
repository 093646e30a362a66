#include "Platform/X11/WindowIdentity/CompoundText.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace kestrove::x11 {
namespace {

TEST(CompoundTextTest, IsLatinUntilItSaysOtherwise) {
    EXPECT_EQ(textOfCompound(""), "");
    EXPECT_EQ(textOfCompound("caf\xE9"), "café");
    EXPECT_EQ(textOfCompound("\x1B-B\xE8\x1B-A\xE9"), "čé");
    EXPECT_EQ(textOfCompound("\x1B-L\xBF\xE0"), "Пр");
}

TEST(CompoundTextTest, KnowsTheSetsOfJapanese) {
    EXPECT_EQ(textOfCompound("\x1B$(BF|K\\8l\x1B(B!"), "日本語!");
    EXPECT_EQ(textOfCompound("\x1B$)B\xC6\xFC\xCB\xDC"), "日本");
    EXPECT_EQ(textOfCompound("\x1B)I\xB6\xC5"), "\uFF76\uFF85");
    EXPECT_EQ(textOfCompound("\x1B(Jabc"), "abc");
}

TEST(CompoundTextTest, KnowsKoreanAndChinese) {
    EXPECT_EQ(textOfCompound("\x1B$(CGQ"), "한");
    EXPECT_EQ(textOfCompound("\x1B$(AVP"), "中");
}

TEST(CompoundTextTest, PassesUtf8OnAndSkipsDirections) {
    EXPECT_EQ(textOfCompound("a\x1B%G一覧\x1B%@b"), "a一覧b");
    EXPECT_EQ(textOfCompound("a\x9B\x32]b\x9B]c"), "abc");
}

TEST(CompoundTextTest, StandsInForWhatItDoesNotKnow) {
    EXPECT_EQ(textOfCompound("a\x1B$(Z!!\x1B(Bb"), "a\uFFFD\uFFFDb");
    EXPECT_EQ(textOfCompound(std::string_view("a\x1B%/1\x80\x84koi8b", 12)), "a\uFFFDb");
    // Cut off anywhere.
    EXPECT_EQ(textOfCompound("a\x1B"), "a");
    EXPECT_EQ(textOfCompound("a\x1B$(B\x46"), "a\uFFFD");
    EXPECT_EQ(textOfCompound("a\x1B%/1\x80"), "a");
    EXPECT_EQ(textOfCompound("a\x1B%Gb"), "ab");
    EXPECT_EQ(textOfCompound("a\x9B"), "a");
}

TEST(CompoundTextTest, IsValidWhateverTheBytes) {
    std::uint32_t seed = 1;
    for (int time = 0; time < 2000; ++time) {
        std::string bytes;
        for (int i = 0; i < 24; ++i) {
            seed = seed * 1664525U + 1013904223U;
            constexpr std::string_view likely = "\x1B$()-%/ABGI@\x9B]";
            const auto choice = seed >> 24U;
            bytes += choice < 128 ? likely[choice % likely.size()] : static_cast<char>(seed >> 16U);
        }
        for (const char each : textOfCompound(bytes))
            EXPECT_FALSE(each >= 0 && each < 0x20) << "seed " << seed;
    }
}

} // namespace
} // namespace kestrove::x11

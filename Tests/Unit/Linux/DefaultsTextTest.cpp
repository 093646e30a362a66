#include "Platform/Linux/DefaultsText.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>

namespace kestrove::DefaultsText {
namespace {

Value text(std::string_view content) {
    return std::string(content);
}

Value bytes(std::string_view content) {
    return Data(content.begin(), content.end());
}

TEST(DefaultsText, WritesEverydayValuesAsAPersonWould) {
    EXPECT_EQ(format(true), "true");
    EXPECT_EQ(format(false), "false");
    EXPECT_EQ(format(std::int64_t(30)), "30");
    EXPECT_EQ(format(std::int64_t(-7)), "-7");
    EXPECT_EQ(format(text("mouse")), "mouse");
    EXPECT_EQ(format(text("画面 1")), "画面 1");
    EXPECT_EQ(format(bytes(R"([{"display":{"_0":1}}])")), R"([{"display":{"_0":1}}])");
    EXPECT_EQ(format(bytes("[]")), "[]");
}

TEST(DefaultsText, QuotesTextThatWouldReadAsSomethingElse) {
    EXPECT_EQ(format(text("")), R"("")");
    EXPECT_EQ(format(text("true")), R"("true")");
    EXPECT_EQ(format(text("30")), R"("30")");
    EXPECT_EQ(format(text("99999999999999999999")), R"("99999999999999999999")");
    EXPECT_EQ(format(text("[]")), R"("[]")");
    EXPECT_EQ(format(text("hex:00")), R"("hex:00")");
    EXPECT_EQ(format(text(" a")), R"(" a")");
    EXPECT_EQ(format(text("a\nb\\\"")), R"("a\nb\\\"")");
}

TEST(DefaultsText, WritesBytesThatAreNoOneLineJsonInHexadecimal) {
    EXPECT_EQ(format(bytes("")), "hex:");
    EXPECT_EQ(format(bytes("mouse")), "hex:6d6f757365");
    EXPECT_EQ(format(bytes("[1,")), "hex:5b312c");
    EXPECT_EQ(format(bytes("[\n]")), "hex:5b0a5d");
    EXPECT_EQ(format(bytes("[] ")), "hex:5b5d20");
    EXPECT_EQ(format(bytes("[\"\xff\"]")), "hex:5b22ff225d");
}

TEST(DefaultsText, ReadsWhatAPersonWrites) {
    EXPECT_EQ(parse("  true \r"), Value(true));
    EXPECT_EQ(parse("\t42"), Value(std::int64_t(42)));
    EXPECT_EQ(parse("True"), text("True"));
    EXPECT_EQ(parse(""), text(""));
    EXPECT_EQ(parse("4 2"), text("4 2"));
    EXPECT_EQ(parse("hex:0aFF"), bytes("\x0a\xff"));
    EXPECT_EQ(parse("[ not json"), bytes("[ not json"));
}

TEST(DefaultsText, RefusesWhatItCannotUnderstand) {
    EXPECT_EQ(parse("99999999999999999999"), std::nullopt);
    EXPECT_EQ(parse("hex:0"), std::nullopt);
    EXPECT_EQ(parse("hex:0g"), std::nullopt);
    EXPECT_EQ(parse("hex:-1"), std::nullopt);
    EXPECT_EQ(parse("\"open"), std::nullopt);
    EXPECT_EQ(parse("\""), std::nullopt);
    EXPECT_EQ(parse(R"("a" b")"), std::nullopt);
    EXPECT_EQ(parse(R"("a\")"), std::nullopt);
    EXPECT_EQ(parse(R"("\x")"), std::nullopt);
}

TEST(DefaultsText, BringsEveryValueBackOnOneLine) {
    std::mt19937 random(20260101);
    // Few different characters, those that mean something among them, so that they meet often.
    using namespace std::string_literals;
    const auto alphabet = "\"\\nr0t[]{}:hex-19 \t\n\r\0a=#\x7f\xe7\x94\xbb\xff"s;
    const auto randomText = [&] {
        std::string result;
        for (auto left = random() % 9; left > 0; --left)
            result += alphabet[random() % alphabet.size()];
        return result;
    };
    for (int round = 0; round < 50'000; ++round) {
        const auto content = randomText();
        const auto number = static_cast<std::int64_t>(random());
        for (const auto& value : {text(content), bytes(content), Value(number), Value(-number)}) {
            const auto written = format(value);
            ASSERT_EQ(written.find('\n'), std::string::npos) << written;
            ASSERT_EQ(parse(written), value) << written;
        }
    }
    for (const auto number :
         {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()})
        EXPECT_EQ(parse(format(number)), Value(number));
}

} // namespace
} // namespace kestrove::DefaultsText

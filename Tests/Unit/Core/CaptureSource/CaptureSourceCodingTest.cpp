#include "Core/CaptureSource/CaptureSourceCoding.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string_view>

namespace kestrove {
namespace {

using Kind = DecodingError::Kind;

std::optional<Json> parse(std::string_view text) {
    return parseJson({text.begin(), text.end()});
}

auto source(std::string_view text) {
    return decodeCaptureSource(parse(text).value_or(Json()));
}

auto owner(std::string_view text) {
    return decodeWindowOwnerIdentity(parse(text).value_or(Json()));
}

auto selection(std::string_view text) {
    return decodeManualWindowSelection(parse(text).value_or(Json()));
}

const ManualWindowSelection picked{4711, {-7, "org.example.\"編集\""}};

TEST(CaptureSourceCoding, WritesTheExactKeysInOrder) {
    EXPECT_EQ(encode(CaptureSource::display(5)).dump(), R"({"display":{"_0":5}})");
    EXPECT_EQ(encode(CaptureSource::window(4711)).dump(), R"({"window":{"_0":4711}})");
    EXPECT_EQ(encode(picked.owner).dump(),
              R"({"processID":-7,"bundleIdentifier":"org.example.\"編集\""})");
    EXPECT_EQ(
        encode(picked).dump(),
        R"({"windowID":4711,"owner":{"processID":-7,"bundleIdentifier":"org.example.\"編集\""}})");
}

TEST(CaptureSourceCoding, ReadsBackWhatItWrote) {
    for (const std::uint32_t identifier : {0U, 1U, 2147483648U, 4294967295U}) {
        for (const auto& each :
             {CaptureSource::display(identifier), CaptureSource::window(identifier)})
            EXPECT_EQ(source(encode(each).dump()), each);
    }
    EXPECT_EQ(selection(encode(picked).dump()), picked);
}

TEST(CaptureSourceCoding, NoneOrBothOfTheKnownKeysIsATypeMismatch) {
    const DecodingError error(Kind::typeMismatch, "Invalid number of keys found, expected one.");
    EXPECT_EQ(source(R"({"display":{"_0":1},"window":{"_0":1}})"), std::unexpected(error));
    EXPECT_EQ(source("{}"), std::unexpected(error));
    EXPECT_EQ(source(R"({"Display":{"_0":1}})"), std::unexpected(error));
}

TEST(CaptureSourceCoding, IdentifiersKeepToThirtyTwoBits) {
    EXPECT_EQ(source(R"({"display":{"_0":4294967295}})"), CaptureSource::display(4294967295));
    for (const auto* number : {"4294967296", "-1", "18446744073709551615", "-9223372036854775808"})
        EXPECT_EQ(source(fmt::format(R"({{"display":{{"_0":{}}}}})", number)).error().kind,
                  Kind::dataCorrupted)
            << number;
}

TEST(CaptureSourceCoding, ProcessIdentifiersAreSignedThirtyTwoBits) {
    const auto withProcess = [](const char* number) {
        return owner(fmt::format(R"({{"processID":{},"bundleIdentifier":"a"}})", number));
    };
    EXPECT_EQ(withProcess("2147483647")->processID, 2147483647);
    EXPECT_EQ(withProcess("-2147483648")->processID, -2147483648);
    EXPECT_EQ(withProcess("2147483648").error().kind, Kind::dataCorrupted);
    EXPECT_EQ(withProcess("-2147483649").error().kind, Kind::dataCorrupted);
    EXPECT_EQ(withProcess("18446744073709551615").error().kind, Kind::dataCorrupted)
        << "all bits set is not -1";
}

TEST(CaptureSourceCoding, MissingKeysFail) {
    EXPECT_EQ(source(R"({"window":{}})").error().kind, Kind::keyNotFound);
    EXPECT_EQ(owner(R"({"bundleIdentifier":"a"})").error().kind, Kind::keyNotFound);
    EXPECT_EQ(owner(R"({"processID":1})").error().kind, Kind::keyNotFound);
    EXPECT_EQ(selection(R"({"windowID":1})").error().kind, Kind::keyNotFound);
    EXPECT_EQ(selection(R"({"owner":{"processID":1,"bundleIdentifier":"a"}})").error().kind,
              Kind::keyNotFound);
    EXPECT_EQ(selection(R"({"windowID":1,"owner":{"processID":1}})").error().kind,
              Kind::keyNotFound);
}

TEST(CaptureSourceCoding, WrongTypesFail) {
    for (const auto* text :
         {"null", "5", "[]", R"("display")", R"([{"display":{"_0":1}}])", R"({"display":5})",
          R"({"display":[1]})", R"({"display":null})", R"({"display":{"_0":"5"}})",
          R"({"display":{"_0":1.5}})", R"({"display":{"_0":true}})", R"({"display":{"_0":null}})"})
        EXPECT_EQ(source(text).error().kind, Kind::typeMismatch) << text;
    EXPECT_EQ(owner(R"({"processID":1,"bundleIdentifier":null})").error().kind, Kind::typeMismatch);
    EXPECT_EQ(owner(R"({"processID":"1","bundleIdentifier":"a"})").error().kind,
              Kind::typeMismatch);
    EXPECT_EQ(selection(R"({"windowID":1,"owner":"a"})").error().kind, Kind::typeMismatch);
}

TEST(CaptureSourceCoding, UnknownKeysAreIgnored) {
    EXPECT_EQ(source(R"({"version":2,"window":{"_1":null,"_0":7},"screen":{}})"),
              CaptureSource::window(7));
    EXPECT_EQ(selection(R"({"x":1,"owner":{"bundleIdentifier":"a","y":[],"processID":1},)"
                        R"("windowID":7})"),
              (ManualWindowSelection{7, {1, "a"}}));
}

TEST(Json, WhatIsNoJsonTextIsAbsent) {
    for (const std::string_view text :
         {"", " ", "{", "[1,]", "nul", "[] []", "\xFF", "[\"\xC3\"]", "[1e999]", "\xEF\xBB"})
        EXPECT_FALSE(parse(text)) << text;
}

TEST(Json, DeepNestingNeitherThrowsNorOverflowsTheStack) {
    const std::string open(100'000, '[');
    EXPECT_FALSE(parse(open));
    EXPECT_TRUE(parse(open + std::string(open.size(), ']')));
}

TEST(Json, ATextThatIsNotUtf8IsNotWritten) {
    EXPECT_TRUE(serializeJson(Json("編集 \xEF\xBF\xBD")));
    EXPECT_FALSE(serializeJson(Json("a\xFF")));
    EXPECT_FALSE(serializeJson(encode(WindowOwnerIdentity{1, "\xC3"})));
}

} // namespace
} // namespace kestrove

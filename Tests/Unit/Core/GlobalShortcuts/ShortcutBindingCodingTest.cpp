#include "Core/GlobalShortcuts/ShortcutBindingCoding.h"

#include <gtest/gtest.h>

#include <string_view>

namespace kestrove {
namespace {

using Kind = DecodingError::Kind;

Json parsed(std::string_view text) {
    return parseJson({text.begin(), text.end()}).value();
}

std::optional<Kind> errorOf(std::string_view text) {
    const auto decoded = decodeShortcutBinding(parsed(text));
    return decoded ? std::nullopt : std::optional(decoded.error().kind);
}

TEST(ShortcutBindingCoding, KeepsItsKeysInTheirOrder) {
    EXPECT_EQ(encode(ShortcutBinding{1, 0x1100, "S"}).dump(),
              R"({"keyCode":1,"modifiers":4352,"characters":"S"})");
    EXPECT_EQ(encode(ShortcutBindings{{ShortcutAction::hideToggle, {4, 256, "h"}},
                                      {ShortcutAction::startStop, {49, 2048, ""}}})
                  .dump(),
              R"({"startStop":{"keyCode":49,"modifiers":2048,"characters":""},)"
              R"("hideToggle":{"keyCode":4,"modifiers":256,"characters":"h"}})");
}

TEST(ShortcutBindingCoding, DecodesWhatItEncodes) {
    for (const ShortcutBinding& binding :
         {ShortcutBinding{1, 0x1100, "S"}, {0, 0, ""}, {0xFFFFFFFF, 0xFFFFFFFF, "\"ß\\ あ"}})
        EXPECT_EQ(decodeShortcutBinding(encode(binding)), binding);
    EXPECT_EQ(decodeShortcutBindings(encode(defaultShortcutBindings())), defaultShortcutBindings());
}

TEST(ShortcutBindingCoding, NeedsAllThreeValues) {
    EXPECT_EQ(errorOf(R"({"keyCode":1,"modifiers":256})"), Kind::keyNotFound);
    EXPECT_EQ(errorOf(R"({"keyCode":1,"characters":"s"})"), Kind::keyNotFound);
    EXPECT_EQ(errorOf(R"({"modifiers":256,"characters":"s"})"), Kind::keyNotFound);
    EXPECT_EQ(errorOf("{}"), Kind::keyNotFound);
    EXPECT_EQ(errorOf("[]"), Kind::typeMismatch);
    EXPECT_EQ(errorOf("null"), Kind::typeMismatch);
}

TEST(ShortcutBindingCoding, NeedsTheRightTypes) {
    EXPECT_EQ(errorOf(R"({"keyCode":"1","modifiers":256,"characters":"s"})"), Kind::typeMismatch);
    EXPECT_EQ(errorOf(R"({"keyCode":1,"modifiers":null,"characters":"s"})"), Kind::typeMismatch);
    EXPECT_EQ(errorOf(R"({"keyCode":1,"modifiers":256,"characters":5})"), Kind::typeMismatch);
    EXPECT_EQ(errorOf(R"({"keyCode":-1,"modifiers":256,"characters":"s"})"), Kind::dataCorrupted);
    EXPECT_EQ(errorOf(R"({"keyCode":1,"modifiers":4294967296,"characters":"s"})"),
              Kind::dataCorrupted);
}

TEST(ShortcutBindingCoding, IgnoresUnknownKeysAndDoesNotJudge) {
    const auto invalid =
        decodeShortcutBinding(parsed(R"({"keyCode":1,"modifiers":0,"characters":"s","more":[1]})"));
    EXPECT_EQ(invalid, (ShortcutBinding{1, 0, "s"}));
}

TEST(ShortcutBindingCoding, OneMalformedBindingFailsTheMapAlsoUnderAnUnknownName) {
    EXPECT_FALSE(decodeShortcutBindings(parsed(
        R"({"startStop":{"keyCode":1,"modifiers":256,"characters":"s"},"other":{"keyCode":1}})")));
    EXPECT_EQ(decodeShortcutBindings(
                  parsed(R"({"other":{"keyCode":1,"modifiers":256,"characters":"s"}})")),
              ShortcutBindings());
    EXPECT_FALSE(decodeShortcutBindings(parsed("[]")));
}

} // namespace
} // namespace kestrove

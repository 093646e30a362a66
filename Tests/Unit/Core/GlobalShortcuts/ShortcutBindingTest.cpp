#include "Core/GlobalShortcuts/ShortcutBinding.h"
#include "Core/GlobalShortcuts/ShortcutAction.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

namespace kestrove {
namespace {

constexpr auto controlCommand = HotKeyModifier::control | HotKeyModifier::command;

TEST(ShortcutBinding, ShowsModifiersInAFixedOrderAndTheKeyInUpperCase) {
    EXPECT_EQ((ShortcutBinding{1, 0x1100, "s"}).display(), "⌃⌘S");
    EXPECT_EQ((ShortcutBinding{49, 0x1B00, " "}).display(), "⌃⌥⇧⌘Space");
    EXPECT_EQ((ShortcutBinding{96, 0x300, ""}).display(), "⇧⌘F5");
    EXPECT_EQ((ShortcutBinding{122, 0, ""}).display(), "F1");
    EXPECT_EQ((ShortcutBinding{1, 0x100, ""}).display(), "⌘") << "no name, no characters";
    EXPECT_EQ((ShortcutBinding{1, 0x800, "ö"}).display(), "⌥Ö");
    EXPECT_EQ((ShortcutBinding{27, 0x800, "ß"}).display(), "⌥SS");
    EXPECT_EQ((ShortcutBinding{34, 0x100, "i"}).display(), "⌘I") << "in Turkish too";
    EXPECT_EQ((ShortcutBinding{1, 0xFFFFE4FF, "s"}).display(), "S") << "other bits have no symbol";
}

TEST(ShortcutBinding, NamesTheKeysWhoseCharacterTellsNothing) {
    const std::map<std::uint32_t, std::string> names{
        {36, "↩"},    {48, "⇥"},    {49, "Space"}, {51, "⌫"},    {53, "⎋"},    {96, "F5"},
        {97, "F6"},   {98, "F7"},   {99, "F3"},    {100, "F8"},  {101, "F9"},  {103, "F11"},
        {105, "F13"}, {107, "F14"}, {109, "F10"},  {111, "F12"}, {113, "F15"}, {118, "F4"},
        {120, "F2"},  {122, "F1"},  {123, "←"},    {124, "→"},   {125, "↓"},   {126, "↑"}};
    for (std::uint32_t keyCode = 0; keyCode < 300; ++keyCode) {
        const auto found = names.find(keyCode);
        const auto name = ShortcutBinding::specialKeyName(keyCode);
        EXPECT_EQ(name ? std::string(*name) : "", found == names.end() ? "" : found->second)
            << keyCode;
    }
    EXPECT_FALSE(ShortcutBinding::specialKeyName(0xFFFFFFFF));
}

TEST(ShortcutBinding, KnowsTheFunctionKeysFromF1ToF15) {
    // The same set as a mask of the codes from 96 on.
    constexpr std::uint32_t mask = 0x542AABF;
    for (std::uint32_t keyCode = 0; keyCode < 300; ++keyCode) {
        const bool expected = keyCode >= 96 && keyCode <= 122 && (mask >> (keyCode - 96) & 1U) != 0;
        EXPECT_EQ(ShortcutBinding::isFunctionKey(keyCode), expected) << keyCode;
    }
    EXPECT_FALSE(ShortcutBinding::isFunctionKey(106)) << "F16";
    EXPECT_FALSE(ShortcutBinding::isFunctionKey(0xFFFFFFFF));
}

TEST(ShortcutBinding, OnlyAFunctionKeyIsValidWithoutModifiers) {
    EXPECT_TRUE((ShortcutBinding{1, controlCommand, "s"}).isValid());
    EXPECT_TRUE((ShortcutBinding{122, 0, ""}).isValid());
    for (const std::uint32_t keyCode : {1U, 18U, 36U, 48U, 49U, 51U, 53U, 106U, 123U})
        EXPECT_FALSE((ShortcutBinding{keyCode, 0, "x"}).isValid()) << keyCode;
}

TEST(ShortcutBinding, CharactersCountForEqualityButNotForRegistration) {
    const ShortcutBinding lower{1, controlCommand, "s"};
    const ShortcutBinding upper{1, controlCommand, "S"};
    EXPECT_NE(lower, upper);
    EXPECT_EQ(lower.registrationKey(), upper.registrationKey());
    EXPECT_NE(lower, (ShortcutBinding{2, controlCommand, "s"}));
    EXPECT_NE(lower.registrationKey(), (ShortcutBinding{1, 0x100, "s"}).registrationKey());
}

TEST(ShortcutBinding, TakesTheFourModifiersOfAKeyPressAndNoOther) {
    using namespace EventModifierFlag;
    EXPECT_EQ(ShortcutBinding::carbonModifiers(0), 0U);
    EXPECT_EQ(ShortcutBinding::carbonModifiers(0x100000), 0x100U);
    EXPECT_EQ(ShortcutBinding::carbonModifiers(0x20000), 0x200U);
    EXPECT_EQ(ShortcutBinding::carbonModifiers(0x80000), 0x800U);
    EXPECT_EQ(ShortcutBinding::carbonModifiers(0x40000), 0x1000U);
    EXPECT_EQ(ShortcutBinding::carbonModifiers(command | capsLock), 0x100U);
    EXPECT_EQ(ShortcutBinding::carbonModifiers(0xFFFFFFFF), 0x1B00U);
    EXPECT_EQ(ShortcutBinding::carbonModifiers(~(command | shift | option | control)), 0U);
}

TEST(ShortcutAction, HasItsOrderItsTextsAndItsDefaults) {
    const std::vector<std::pair<std::string, std::string>> expected{
        {"startStop", "⌃⌘S"}, {"showPicker", "⌃⌘P"}, {"showWindow", "⌃⌘W"}, {"hideToggle", "⌃⌘H"}};
    std::vector<std::pair<std::string, std::string>> found;
    for (const auto action : allShortcutActions) {
        EXPECT_EQ(shortcutActionFromRawValue(rawValue(action)), action);
        found.emplace_back(rawValue(action), defaultShortcutBindings().at(action).display());
    }
    EXPECT_EQ(found, expected);
    EXPECT_EQ(defaultShortcutBindings(),
              (ShortcutBindings{{ShortcutAction::startStop, {1, 0x1100, "S"}},
                                {ShortcutAction::showPicker, {35, 0x1100, "P"}},
                                {ShortcutAction::showWindow, {13, 0x1100, "W"}},
                                {ShortcutAction::hideToggle, {4, 0x1100, "H"}}}));
    EXPECT_FALSE(shortcutActionFromRawValue("StartStop"));
    EXPECT_FALSE(shortcutActionFromRawValue(""));
}

} // namespace
} // namespace kestrove

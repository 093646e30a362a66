#include "Core/GlobalShortcuts/ShortcutBinding.h"

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <utility>

namespace kestrove {

namespace {

using Symbol = std::pair<std::uint32_t, std::string_view>;

/// In the order of the display text.
constexpr std::array<Symbol, 4> modifierSymbols{{
    {HotKeyModifier::control, "⌃"},
    {HotKeyModifier::option, "⌥"},
    {HotKeyModifier::shift, "⇧"},
    {HotKeyModifier::command, "⌘"},
}};

constexpr std::array<Symbol, 24> specialKeyNames{{
    {36, "↩"},    {48, "⇥"},    {49, "Space"}, {51, "⌫"},    {53, "⎋"},    {96, "F5"},
    {97, "F6"},   {98, "F7"},   {99, "F3"},    {100, "F8"},  {101, "F9"},  {103, "F11"},
    {105, "F13"}, {107, "F14"}, {109, "F10"},  {111, "F12"}, {113, "F15"}, {118, "F4"},
    {120, "F2"},  {122, "F1"},  {123, "←"},    {124, "→"},   {125, "↓"},   {126, "↑"},
}};

constexpr std::array<std::uint32_t, 15> functionKeys{96,  97,  98,  99,  100, 101, 103, 105,
                                                     107, 109, 111, 113, 118, 120, 122};

/// The same in every language, so that a stored binding is shown alike everywhere.
std::string upperCase(const std::string& text) {
    std::string upper;
    icu::UnicodeString::fromUTF8(text).toUpper(icu::Locale::getRoot()).toUTF8String(upper);
    return upper;
}

} // namespace

bool ShortcutBinding::isValid() const {
    return modifiers != 0 || isFunctionKey(keyCode);
}

std::string ShortcutBinding::display() const {
    std::string text;
    for (const auto& [bit, symbol] : modifierSymbols) {
        if ((modifiers & bit) != 0)
            text += symbol;
    }
    const auto name = specialKeyName(keyCode);
    return text + (name ? std::string(*name) : upperCase(characters));
}

bool ShortcutBinding::isFunctionKey(std::uint32_t keyCode) {
    return std::ranges::binary_search(functionKeys, keyCode);
}

std::uint32_t ShortcutBinding::carbonModifiers(std::uint32_t eventModifierFlags) {
    constexpr std::array<std::pair<std::uint32_t, std::uint32_t>, 4> pairs{{
        {EventModifierFlag::command, HotKeyModifier::command},
        {EventModifierFlag::shift, HotKeyModifier::shift},
        {EventModifierFlag::option, HotKeyModifier::option},
        {EventModifierFlag::control, HotKeyModifier::control},
    }};
    std::uint32_t modifiers = 0;
    for (const auto& [flag, bit] : pairs) {
        if ((eventModifierFlags & flag) != 0)
            modifiers |= bit;
    }
    return modifiers;
}

std::optional<std::string_view> ShortcutBinding::specialKeyName(std::uint32_t keyCode) {
    const auto* const found = std::ranges::find(specialKeyNames, keyCode, &Symbol::first);
    return found == specialKeyNames.end() ? std::nullopt : std::optional(found->second);
}

} // namespace kestrove

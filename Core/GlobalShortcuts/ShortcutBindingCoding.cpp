#include "Core/GlobalShortcuts/ShortcutBindingCoding.h"

#include <utility>

namespace kestrove {

namespace {

constexpr auto keyCodeKey = "keyCode";
constexpr auto modifiersKey = "modifiers";
constexpr auto charactersKey = "characters";

} // namespace

Json encode(const ShortcutBinding& binding) {
    Json json = Json::object();
    json[keyCodeKey] = binding.keyCode;
    json[modifiersKey] = binding.modifiers;
    json[charactersKey] = binding.characters;
    return json;
}

std::expected<ShortcutBinding, DecodingError> decodeShortcutBinding(const Json& json) {
    const auto keyCode = decodeNumber<std::uint32_t>(json, keyCodeKey);
    if (!keyCode)
        return std::unexpected(keyCode.error());
    const auto modifiers = decodeNumber<std::uint32_t>(json, modifiersKey);
    if (!modifiers)
        return std::unexpected(modifiers.error());
    auto characters = decodeText(json, charactersKey);
    if (!characters)
        return std::unexpected(std::move(characters.error()));
    return ShortcutBinding{*keyCode, *modifiers, std::move(*characters)};
}

Json encode(const ShortcutBindings& bindings) {
    Json json = Json::object();
    for (const auto& [action, binding] : bindings)
        json[std::string(rawValue(action))] = encode(binding);
    return json;
}

std::expected<ShortcutBindings, DecodingError> decodeShortcutBindings(const Json& json) {
    if (!json.is_object())
        return typeMismatch("Expected an object.");
    ShortcutBindings bindings;
    for (const auto& [key, value] : json.items()) {
        auto binding = decodeShortcutBinding(value);
        if (!binding)
            return std::unexpected(std::move(binding.error()));
        if (const auto action = shortcutActionFromRawValue(key))
            bindings.insert_or_assign(*action, std::move(*binding));
    }
    return bindings;
}

} // namespace kestrove

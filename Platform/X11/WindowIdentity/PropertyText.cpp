#include "Platform/X11/WindowIdentity/PropertyText.h"

#include <algorithm>
#include <cstdint>

namespace kestrove::x11 {
namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

bool isControl(std::uint32_t character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

std::uint8_t byteAt(std::string_view bytes, std::size_t index) {
    return static_cast<std::uint8_t>(bytes[index]);
}

std::string_view withoutZerosAtTheEnd(std::string_view bytes) {
    const auto last = bytes.find_last_not_of('\0');
    return bytes.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

/// How many bytes a sequence that begins so has; 0 for a byte that begins none.
std::size_t lengthOfSequence(std::uint8_t first) {
    if (first < 0x80)
        return 1;
    if (first >= 0xC2 && first < 0xE0)
        return 2;
    if (first >= 0xE0 && first < 0xF0)
        return 3;
    return first >= 0xF0 && first < 0xF5 ? 4 : 0;
}

/// The character of the sequence at the beginning of `bytes`, which is taken off; an invalid byte
/// is taken off alone.
std::uint32_t takeCharacter(std::string_view& bytes, bool& isValid) {
    const auto first = byteAt(bytes, 0);
    const auto length = lengthOfSequence(first);
    isValid = length != 0 && length <= bytes.size();
    std::uint32_t character = length < 2 ? first : first & (0x7FU >> length);
    for (std::size_t i = 1; isValid && i < length; ++i) {
        const auto byte = byteAt(bytes, i);
        isValid = (byte & 0xC0U) == 0x80;
        character = (character << 6U) | (byte & 0x3FU);
    }
    const bool isOverlong =
        (length == 3 && character < 0x800) || (length == 4 && character < 0x10000);
    const bool isSurrogate = character >= 0xD800 && character < 0xE000;
    isValid = isValid && !isOverlong && !isSurrogate && character <= 0x10FFFF;
    bytes.remove_prefix(isValid ? length : 1);
    return character;
}

} // namespace

std::string textOfUtf8(std::string_view bytes) {
    std::string text;
    auto rest = withoutZerosAtTheEnd(bytes);
    while (!rest.empty()) {
        const auto before = rest;
        bool isValid = false;
        const auto character = takeCharacter(rest, isValid);
        if (!isValid)
            text += replacement;
        else if (isControl(character))
            text += ' ';
        else
            text += before.substr(0, before.size() - rest.size());
    }
    return text;
}

std::string textOfLatin1(std::string_view bytes) {
    std::string text;
    for (const char each : withoutZerosAtTheEnd(bytes)) {
        const auto byte = static_cast<std::uint8_t>(each);
        if (isControl(byte)) {
            text += ' ';
        } else if (byte < 0x80) {
            text += each;
        } else {
            text += static_cast<char>(0xC0U | (byte >> 6U));
            text += static_cast<char>(0x80U | (byte & 0x3FU));
        }
    }
    return text;
}

} // namespace kestrove::x11

#include "Platform/X11/Screens/Edid.h"

#include <algorithm>
#include <array>

namespace kestrove::x11 {
namespace {

constexpr std::size_t baseBlockSize = 128;
constexpr auto magic = std::to_array<std::uint8_t>({0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0});
constexpr std::size_t firstDescriptor = 54;
constexpr std::size_t descriptorSize = 18;
constexpr std::size_t descriptorCount = 4;
constexpr std::size_t textOffset = 5;
// A descriptor that is no timing begins with three zeros, then its type.
constexpr auto displayNameTag = std::to_array<std::uint8_t>({0, 0, 0, 0xFC});
constexpr std::uint8_t endOfText = 0x0A;

std::string trimmed(const std::string& text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

} // namespace

std::optional<std::string> edidDisplayName(std::span<const std::uint8_t> edid) {
    if (edid.size() < baseBlockSize || !std::ranges::equal(edid.first(magic.size()), magic))
        return std::nullopt;
    for (std::size_t i = 0; i < descriptorCount; ++i) {
        const auto descriptor = edid.subspan(firstDescriptor + i * descriptorSize, descriptorSize);
        if (!std::ranges::equal(descriptor.first(displayNameTag.size()), displayNameTag))
            continue;
        std::string text;
        for (const auto byte : descriptor.subspan(textOffset)) {
            if (byte == endOfText)
                break;
            if (byte >= 0x20 && byte < 0x7F)
                text += static_cast<char>(byte);
        }
        if (auto name = trimmed(text); !name.empty())
            return name;
    }
    return std::nullopt;
}

} // namespace kestrove::x11

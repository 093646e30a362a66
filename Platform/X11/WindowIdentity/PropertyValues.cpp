#include "Platform/X11/WindowIdentity/PropertyValues.h"

#include "Platform/X11/WindowIdentity/PropertyText.h"

#include <filesystem>
#include <limits>
#include <utility>

namespace kestrove::x11 {
namespace {

std::optional<std::string> unlessEmpty(std::string text) {
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

} // namespace

std::optional<ProcessID> processOf(std::optional<std::uint32_t> number,
                                   const std::optional<std::string>& machine,
                                   std::string_view thisMachine) {
    constexpr std::uint32_t largest = std::numeric_limits<ProcessID>::max();
    if (!number || *number == 0 || *number > largest || !machine ||
        textOfUtf8(*machine) != thisMachine)
        return std::nullopt;
    return static_cast<ProcessID>(*number);
}

std::optional<std::string> classOf(const std::string& bytes) {
    const auto separator = bytes.find('\0');
    if (separator == std::string::npos)
        return std::nullopt;
    return unlessEmpty(textOfLatin1(std::string_view(bytes.c_str() + separator + 1)));
}

std::optional<std::string> applicationOf(std::string_view bytes) {
    const auto file = std::filesystem::path(textOfUtf8(bytes)).filename();
    return unlessEmpty(file.extension() == ".desktop" ? file.stem().string() : file.string());
}

Rect withoutShadow(const Rect& window, std::span<const std::uint32_t> extents) {
    constexpr std::size_t sides = 4;
    if (extents.size() != sides)
        return window;
    // As numbers that do not wrap: two of them together may be more than one of them can hold.
    const double left = extents[0];
    const double across = left + extents[1];
    const double top = extents[2];
    const double down = top + extents[3];
    if (across >= window.width || down >= window.height)
        return window;
    return {window.x + left, window.y + top, window.width - across, window.height - down};
}

} // namespace kestrove::x11

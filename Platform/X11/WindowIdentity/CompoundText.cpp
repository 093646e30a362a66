#include "Platform/X11/WindowIdentity/CompoundText.h"

#include "Platform/X11/WindowIdentity/PropertyText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iconv.h>
#include <utility>

namespace kestrove::x11 {
namespace {

constexpr char escape = '\x1B';
constexpr auto controlSequence = '\x9B';
constexpr std::string_view replacement = "\xEF\xBF\xBD";

/// One character set, and how the C library is asked for its characters: with all bytes in the
/// right half, after a prefix.
struct CharacterSet {
    /// What follows the escape character.
    std::string_view announcement;
    const char* encoding;
    std::size_t bytesOfCharacter;
    std::string_view prefix;
};

constexpr auto leftSets = std::to_array<CharacterSet>({
    {"(B", nullptr, 1, ""},
    {"(J", nullptr, 1, ""},
    {"$(A", "EUC-CN", 2, ""},
    {"$(B", "EUC-JP", 2, ""},
    {"$(C", "EUC-KR", 2, ""},
    {"$(D", "EUC-JP", 2, "\x8F"},
    {"$A", "EUC-CN", 2, ""},
    {"$B", "EUC-JP", 2, ""},
});

constexpr auto rightSets = std::to_array<CharacterSet>({
    {"-A", "ISO-8859-1", 1, ""},
    {"-B", "ISO-8859-2", 1, ""},
    {"-C", "ISO-8859-3", 1, ""},
    {"-D", "ISO-8859-4", 1, ""},
    {"-F", "ISO-8859-7", 1, ""},
    {"-G", "ISO-8859-6", 1, ""},
    {"-H", "ISO-8859-8", 1, ""},
    {"-L", "ISO-8859-5", 1, ""},
    {"-M", "ISO-8859-9", 1, ""},
    {"-b", "ISO-8859-15", 1, ""},
    {")I", "EUC-JP", 1, "\x8E"},
    {"$)A", "EUC-CN", 2, ""},
    {"$)B", "EUC-JP", 2, ""},
    {"$)C", "EUC-KR", 2, ""},
    {"$)D", "EUC-JP", 2, "\x8F"},
});

constexpr CharacterSet unknownSet{"", "", 1, ""};

template <std::size_t Count>
CharacterSet find(const std::array<CharacterSet, Count>& sets, std::string_view announcement) {
    const auto found = std::ranges::find(sets, announcement, &CharacterSet::announcement);
    return found == sets.end() ? unknownSet : *found;
}

std::uint8_t byteAt(std::string_view bytes, std::size_t index) {
    return static_cast<std::uint8_t>(bytes[index]);
}

/// One character; `code` is in either half.
std::string converted(const CharacterSet& set, std::string_view code) {
    // No name would mean the encoding of this program's environment.
    if (set.encoding && *set.encoding == 0)
        return std::string(replacement);
    std::string input(set.prefix);
    for (const char byte : code)
        input += static_cast<char>(static_cast<std::uint8_t>(byte) | 0x80U);
    const iconv_t converter = iconv_open("UTF-8", set.encoding);
    if (converter == reinterpret_cast<iconv_t>(-1)) // NOLINT: the C library's own word for failure
        return std::string(replacement);
    std::array<char, 16> output{};
    char* from = input.data();
    char* to = output.data();
    std::size_t fromLeft = input.size();
    std::size_t toLeft = output.size();
    const bool isDone =
        iconv(converter, &from, &fromLeft, &to, &toLeft) != static_cast<std::size_t>(-1);
    iconv_close(converter);
    return isDone ? std::string(output.data(), output.size() - toLeft) : std::string(replacement);
}

class Reader {
public:
    explicit Reader(std::string_view bytes)
        : m_rest(bytes) {}

    std::string read() {
        while (!m_rest.empty())
            readOne();
        return std::move(m_text);
    }

private:
    void readOne() {
        const auto first = byteAt(m_rest, 0);
        if (m_rest.front() == escape) {
            m_rest.remove_prefix(1);
            readEscape();
        } else if (m_rest.front() == controlSequence) {
            // The direction of writing, up to a "]".
            const auto end = m_rest.find(']');
            m_rest.remove_prefix(end == std::string_view::npos ? m_rest.size() : end + 1);
        } else if (first < 0x21 || first == 0x7F || (first < 0x80 && !m_left.encoding)) {
            m_text += m_rest.front();
            m_rest.remove_prefix(1);
        } else if (first >= 0x80 && first < 0xA0) {
            m_rest.remove_prefix(1);
        } else {
            const auto& set = first < 0x80 ? m_left : m_right;
            const auto length = std::min(set.bytesOfCharacter, m_rest.size());
            m_text += converted(set, m_rest.substr(0, length));
            m_rest.remove_prefix(length);
        }
    }

    /// Intermediates, then one final byte.
    void readEscape() {
        std::size_t length = 0;
        while (length < m_rest.size() && byteAt(m_rest, length) >= 0x20 &&
               byteAt(m_rest, length) < 0x30)
            ++length;
        length = std::min(length + 1, m_rest.size());
        const auto announcement = m_rest.substr(0, length);
        m_rest.remove_prefix(length);
        if (announcement == "%G")
            readUtf8();
        else if (announcement.starts_with("%/"))
            skipExtendedSegment();
        else if (announcement.starts_with("-") || announcement.starts_with(")") ||
                 announcement.starts_with("$)"))
            m_right = find(rightSets, announcement);
        else
            m_left = find(leftSets, announcement);
    }

    void readUtf8() {
        constexpr std::string_view end = "\x1B%@";
        const auto length = std::min(m_rest.find(end), m_rest.size());
        m_text += m_rest.substr(0, length);
        m_rest.remove_prefix(std::min(length + end.size(), m_rest.size()));
    }

    /// In an encoding that it names itself: two bytes of length, seven bits each.
    void skipExtendedSegment() {
        constexpr std::size_t lengthBytes = 2;
        if (m_rest.size() < lengthBytes) {
            m_rest = {};
            return;
        }
        const std::size_t length = (byteAt(m_rest, 0) & 0x7FU) * 128U + (byteAt(m_rest, 1) & 0x7FU);
        m_rest.remove_prefix(std::min(lengthBytes + length, m_rest.size()));
        m_text += replacement;
    }

    std::string_view m_rest;
    std::string m_text;
    CharacterSet m_left = leftSets.front();
    CharacterSet m_right = rightSets.front();
};

} // namespace

std::string textOfCompound(std::string_view bytes) {
    return textOfUtf8(Reader(bytes).read());
}

} // namespace kestrove::x11

#include "Platform/Linux/DefaultsText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <utility>

namespace kestrove::DefaultsText {

namespace {

constexpr std::string_view hexPrefix = "hex:";
constexpr std::array<std::pair<char, char>, 6> escapes{
    {{'"', '"'}, {'\\', '\\'}, {'\n', 'n'}, {'\r', 'r'}, {'\t', 't'}, {'\0', '0'}}};

bool looksLikeInteger(std::string_view text) {
    const auto digits = text.starts_with('-') ? text.substr(1) : text;
    return !digits.empty() &&
           std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; });
}

bool looksLikeJson(std::string_view text) {
    return text.starts_with('[') || text.starts_with('{');
}

bool fitsOnALine(std::string_view text) {
    return text == trimmed(text) && std::ranges::none_of(text, [](char c) {
               return static_cast<unsigned char>(c) < ' ' || c == '\x7f';
           });
}

std::string withQuotes(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        const auto* const escape = std::ranges::find(escapes, c, &std::pair<char, char>::first);
        if (escape == escapes.end()) {
            result += c;
        } else {
            result += '\\';
            result += escape->second;
        }
    }
    return result + '"';
}

std::optional<std::string> withoutQuotes(std::string_view text) {
    if (text.size() < 2 || !text.ends_with('"'))
        return std::nullopt;
    text = text.substr(1, text.size() - 2);
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '"')
            return std::nullopt;
        if (text[at] != '\\') {
            result += text[at];
            continue;
        }
        if (++at == text.size())
            return std::nullopt;
        const auto* const escape =
            std::ranges::find(escapes, text[at], &std::pair<char, char>::second);
        if (escape == escapes.end())
            return std::nullopt;
        result += escape->first;
    }
    return result;
}

std::optional<std::uint8_t> hexByte(std::string_view pair) {
    std::uint8_t byte = 0;
    const auto [end, error] = std::from_chars(pair.data(), pair.data() + pair.size(), byte, 16);
    if (error != std::errc() || end != pair.data() + pair.size())
        return std::nullopt;
    return byte;
}

std::optional<Data> bytesOfHex(std::string_view digits) {
    if (digits.size() % 2 != 0)
        return std::nullopt;
    Data bytes;
    for (; !digits.empty(); digits.remove_prefix(2)) {
        const auto byte = hexByte(digits.substr(0, 2));
        if (!byte)
            return std::nullopt;
        bytes.push_back(*byte);
    }
    return bytes;
}

struct Formatter {
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(std::int64_t value) const { return fmt::format("{}", value); }
    std::string operator()(const std::string& value) const {
        const auto read = value.empty() ? std::nullopt : parse(value);
        const bool isPlain = fitsOnALine(value) && read == Value(value);
        return isPlain ? value : withQuotes(value);
    }
    std::string operator()(const Data& value) const {
        std::string text(value.begin(), value.end());
        // Only what a person can read and an editor keeps as it is.
        if (looksLikeJson(text) && fitsOnALine(text) && nlohmann::json::accept(text))
            return text;
        return fmt::format("{}{:02x}", hexPrefix, fmt::join(value, ""));
    }
};

} // namespace

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string format(const Value& value) {
    return std::visit(Formatter(), value);
}

std::optional<Value> parse(std::string_view text) {
    text = trimmed(text);
    if (text == "true" || text == "false")
        return Value(text == "true");
    if (looksLikeInteger(text)) {
        std::int64_t number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        return error == std::errc() ? std::optional<Value>(number) : std::nullopt;
    }
    if (looksLikeJson(text))
        return Value(Data(text.begin(), text.end()));
    if (text.starts_with(hexPrefix)) {
        auto bytes = bytesOfHex(text.substr(hexPrefix.size()));
        return bytes ? std::optional<Value>(std::move(*bytes)) : std::nullopt;
    }
    if (text.starts_with('"')) {
        auto content = withoutQuotes(text);
        return content ? std::optional<Value>(std::move(*content)) : std::nullopt;
    }
    return Value(std::string(text));
}

} // namespace kestrove::DefaultsText

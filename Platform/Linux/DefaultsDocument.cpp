#include "Platform/Linux/DefaultsDocument.h"

#include <algorithm>
#include <fmt/format.h>
#include <optional>
#include <utility>

namespace kestrove {

namespace {

using KeyAndValue = std::pair<std::string_view, std::string_view>;

std::optional<KeyAndValue> split(std::string_view line) {
    const auto equals = line.find('=');
    const auto key = DefaultsText::trimmed(line.substr(0, equals));
    if (equals == std::string_view::npos || key.empty() || key.starts_with('#'))
        return std::nullopt;
    return KeyAndValue(key, line.substr(equals + 1));
}

} // namespace

DefaultsDocument::DefaultsDocument(std::string_view text) {
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        m_lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

std::map<std::string, DefaultsText::Value, std::less<>> DefaultsDocument::values() const {
    std::map<std::string, DefaultsText::Value, std::less<>> values;
    for (const auto& line : m_lines) {
        const auto parts = split(line);
        if (!parts)
            continue;
        if (auto value = DefaultsText::parse(parts->second))
            values.insert_or_assign(std::string(parts->first), std::move(*value));
    }
    return values;
}

void DefaultsDocument::set(std::string_view key, const DefaultsText::Value& value) {
    auto line = fmt::format("{}={}", key, DefaultsText::format(value));
    const auto last = std::find_if(m_lines.rbegin(), m_lines.rend(), [&](const auto& each) {
        const auto parts = split(each);
        return parts && parts->first == key;
    });
    if (last == m_lines.rend())
        m_lines.push_back(std::move(line));
    else
        *last = std::move(line);
}

std::string DefaultsDocument::text() const {
    std::string text;
    for (const auto& line : m_lines)
        text += line + '\n';
    return text;
}

} // namespace kestrove

#pragma once

#include "Platform/Linux/DefaultsText.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace kestrove {

/// The text of a settings file: `key=value` lines, blank lines, comments (`#`) and whatever else
/// somebody wrote into it. Setting a value changes its line, or adds one at the end; every other
/// line stays as it is, byte for byte.
///
/// Of several lines with one key the last one counts. A line that cannot be understood counts for
/// nothing.
class DefaultsDocument {
public:
    DefaultsDocument() = default;
    explicit DefaultsDocument(std::string_view text);

    [[nodiscard]] std::map<std::string, DefaultsText::Value, std::less<>> values() const;
    void set(std::string_view key, const DefaultsText::Value& value);
    [[nodiscard]] std::string text() const;

private:
    /// Without their line breaks.
    std::vector<std::string> m_lines;
};

} // namespace kestrove

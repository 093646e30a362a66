#pragma once

#include "Core/Settings/AppSettings.h"

#include <string>
#include <string_view>
#include <vector>

namespace kestrove::test {

/// One key of a settings file: a line that is not the default, and what to see of it in settings.
struct StoredSetting {
    std::string_view key;
    std::string_view value;
    /// Whether `settings` hold the value of the line.
    bool (*isStored)(const AppSettings& settings);
    /// Whether they hold the default in its place.
    bool (*isDefault)(const AppSettings& settings);
    /// Lines of another type, or of another shape, which count for nothing.
    std::vector<std::string_view> mistyped;
};

/// Every key that is stored.
[[nodiscard]] const std::vector<StoredSetting>& storedSettings();

} // namespace kestrove::test

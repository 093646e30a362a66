#pragma once

#include "Tests/Unit/Settings/StoredSettings.h"

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace kestrove::test {

/// A settings file in which some keys were damaged, as the seed says: left out, of another type,
/// cut off, huge, not UTF-8, or there twice.
class DamagedSettings {
public:
    enum class Outcome : std::uint8_t {
        /// The value that was stored counts.
        stored,
        /// The default counts.
        fallback,
        /// Either, or another value that happens to be one: a number may be cut off and stay one.
        any,
    };

    explicit DamagedSettings(std::uint32_t seed);

    [[nodiscard]] const std::string& text() const { return m_text; }
    /// What has to come of the setting with this place among `storedSettings`.
    [[nodiscard]] Outcome outcome(std::size_t setting) const { return m_outcomes[setting]; }

private:
    [[nodiscard]] Outcome addDamaged(const StoredSetting& setting);
    void addLine(std::string_view key, std::string_view value);
    [[nodiscard]] std::string huge();
    [[nodiscard]] std::string_view mistyped(const StoredSetting& setting);

    std::mt19937 m_random;
    std::string m_text;
    std::vector<Outcome> m_outcomes;
};

} // namespace kestrove::test

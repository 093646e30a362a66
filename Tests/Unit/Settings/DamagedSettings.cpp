#include "Tests/Unit/Settings/DamagedSettings.h"

#include <algorithm>

namespace kestrove::test {

DamagedSettings::DamagedSettings(std::uint32_t seed)
    : m_random(seed) {
    const auto damage = 1 + m_random() % 6; // in 8: from a single key to most of them
    for (const auto& setting : storedSettings()) {
        if (m_random() % 8 < damage) {
            m_outcomes.push_back(addDamaged(setting));
        } else {
            addLine(setting.key, setting.value);
            m_outcomes.push_back(Outcome::stored);
        }
    }
}

DamagedSettings::Outcome DamagedSettings::addDamaged(const StoredSetting& setting) {
    switch (m_random() % 8) {
    case 0: // absent
        return Outcome::fallback;
    case 1:
        addLine(setting.key, mistyped(setting));
        return Outcome::fallback;
    case 2: // cut off
        addLine(setting.key, setting.value.substr(0, m_random() % setting.value.size()));
        return Outcome::any;
    case 3:
        addLine(setting.key, huge());
        return Outcome::fallback;
    case 4: { // not UTF-8, somewhere
        std::string value(setting.value);
        value.insert(m_random() % (value.size() + 1), "\xC3\xFF\x80");
        addLine(setting.key, value);
        return Outcome::fallback;
    }
    case 5: // twice, the last one intact
        addLine(setting.key, mistyped(setting));
        addLine(setting.key, setting.value);
        return Outcome::stored;
    case 6: // twice, the first one intact
        addLine(setting.key, setting.value);
        addLine(setting.key, mistyped(setting));
        return Outcome::any;
    default: { // any bytes
        std::string value(m_random() % 64, '\0');
        std::ranges::generate(value, [this] { return static_cast<char>(m_random()); });
        addLine(setting.key, value);
        return Outcome::any;
    }
    }
}

std::string DamagedSettings::huge() {
    const auto size = 1000 + m_random() % 20'000;
    switch (m_random() % 4) {
    case 0:
        return std::string(size, '9');
    case 1:
        return std::string(size, 'm');
    case 2: // nested deeply
        return std::string(size, '[') + std::string(size, ']');
    default: {
        std::string list = "[{\"display\":{\"_0\":1}}";
        while (list.size() < size)
            list += ",{\"display\":{\"_0\":99999999999999999999}}";
        return list + "]";
    }
    }
}

std::string_view DamagedSettings::mistyped(const StoredSetting& setting) {
    return setting.mistyped[m_random() % setting.mistyped.size()];
}

void DamagedSettings::addLine(std::string_view key, std::string_view value) {
    m_text.append(key).append("=").append(value).append("\n");
}

} // namespace kestrove::test

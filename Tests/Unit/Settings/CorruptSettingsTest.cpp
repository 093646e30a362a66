#include "Core/Settings/AppSettings.h"
#include "Platform/Linux/FileUserDefaults.h"
#include "Tests/Support/Processes/FileContent.h"
#include "Tests/Support/Processes/TemporaryFolder.h"
#include "Tests/Unit/Settings/DamagedSettings.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace kestrove::test {
namespace {

/// Settings as the program reads them at its start.
class LoadedSettings {
public:
    explicit LoadedSettings(const std::filesystem::path& file)
        : m_defaults(file) {}
    AppSettings& settings() { return m_settings; }

private:
    FileUserDefaults m_defaults;
    AppSettings m_settings{m_defaults};
};

class CorruptSettings : public testing::Test {
protected:
    void expect(const DamagedSettings& damaged) {
        const auto& all = storedSettings();
        LoadedSettings run(file);
        for (std::size_t at = 0; at < all.size(); ++at) {
            const auto outcome = damaged.outcome(at);
            SCOPED_TRACE(all[at].key);
            if (outcome == DamagedSettings::Outcome::stored)
                ASSERT_TRUE(all[at].isStored(run.settings()));
            if (outcome == DamagedSettings::Outcome::fallback)
                ASSERT_TRUE(all[at].isDefault(run.settings()));
        }
    }

    TemporaryFolder folder;
    std::filesystem::path file = folder.path() / "kestrove.conf";
};

TEST_F(CorruptSettings, DoNotDisturbTheOtherKeys) {
    for (std::uint32_t seed = 1; seed <= 2000; ++seed) {
        SCOPED_TRACE(fmt::format("seed {}", seed));
        const DamagedSettings damaged(seed);
        setContent(file, damaged.text());
        ASSERT_NO_FATAL_FAILURE(expect(damaged));
    }
}

TEST_F(CorruptSettings, AreWrittenAnewKeyByKey) {
    for (std::uint32_t seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE(fmt::format("seed {}", seed));
        const DamagedSettings damaged(seed);
        setContent(file, damaged.text());
        LoadedSettings(file).settings().targetFPS.set(24);
        EXPECT_EQ(LoadedSettings(file).settings().targetFPS.get(), 24);
        // Every other line is as it was, also the damaged ones: nothing else was set.
        const auto& all = storedSettings();
        LoadedSettings after(file);
        for (std::size_t at = 0; at < all.size(); ++at) {
            if (all[at].key != "kestrove.targetFPS" &&
                damaged.outcome(at) == DamagedSettings::Outcome::stored)
                EXPECT_TRUE(all[at].isStored(after.settings())) << all[at].key;
        }
    }
}

TEST_F(CorruptSettings, OfAnyShapeAreTheDefaults) {
    for (const auto& setting : storedSettings()) {
        for (const auto line : setting.mistyped) {
            SCOPED_TRACE(line);
            setContent(file, fmt::format("{}={}\n", setting.key, line));
            EXPECT_TRUE(setting.isDefault(LoadedSettings(file).settings())) << setting.key;
        }
    }
}

TEST_F(CorruptSettings, CutAnywhereStillLoad) {
    std::string whole;
    for (const auto& setting : storedSettings())
        whole += fmt::format("{}={}\n", setting.key, setting.value);
    std::vector<std::size_t> ends;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        if (whole[at] == '\n')
            ends.push_back(at);
    }
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        SCOPED_TRACE(size);
        setContent(file, std::string_view(whole).substr(0, size));
        LoadedSettings run(file);
        for (std::size_t at = 0; at < ends.size(); ++at) {
            if (ends[at] <= size)
                ASSERT_TRUE(storedSettings()[at].isStored(run.settings())) << at;
            else if (at > 0 && ends[at - 1] >= size)
                ASSERT_TRUE(storedSettings()[at].isDefault(run.settings())) << at;
        }
    }
}

} // namespace
} // namespace kestrove::test

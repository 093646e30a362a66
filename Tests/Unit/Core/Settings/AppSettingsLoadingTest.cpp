#include "Core/Settings/AppSettings.h"
#include "Tests/Support/ScriptedDesktop/MemoryUserDefaults.h"

#include <gtest/gtest.h>

#include <random>

namespace kestrove {
namespace {

const auto firstDisplay = CaptureSource::display(1);
const auto window5 = CaptureSource::window(5);

void expectDefaults(const AppSettings& settings) {
    EXPECT_EQ(settings.followMode.get(), FollowMode::mouse);
    EXPECT_EQ(settings.targetFPS.get(), 30);
    EXPECT_FALSE(settings.alwaysOnTop.get());
    EXPECT_FALSE(settings.autoStart.get());
    EXPECT_FALSE(settings.hideOutputWindow.get());
    EXPECT_TRUE(settings.manualSources.get().empty());
    EXPECT_TRUE(settings.manualWindowSelections().empty());
}

TEST(AppSettingsLoading, AnEmptyStoreYieldsTheDefaults) {
    MemoryUserDefaults defaults;
    const AppSettings settings(defaults);
    expectDefaults(settings);
    EXPECT_TRUE(defaults.values.empty()) << "loading writes nothing";
}

TEST(AppSettingsLoading, WhatIsStoredIsTaken) {
    MemoryUserDefaults defaults;
    defaults.values = {{"kestrove.followMode", std::string("focusedApp")},
                       {"kestrove.targetFPS", std::int64_t{45}},
                       {"kestrove.alwaysOnTop", true},
                       {"kestrove.autoStart", true},
                       {"kestrove.hideOutputWindow", true}};
    defaults.putData("kestrove.manualSources", R"([{"window":{"_0":5}},{"display":{"_0":1}}])");
    defaults.putData("kestrove.manualWindowSelections",
                     R"([{"windowID":5,"owner":{"processID":7,"bundleIdentifier":"a"}}])");
    const AppSettings settings(defaults);
    EXPECT_EQ(settings.followMode.get(), FollowMode::focusedApp);
    EXPECT_EQ(settings.targetFPS.get(), 45);
    EXPECT_TRUE(settings.alwaysOnTop.get());
    EXPECT_TRUE(settings.autoStart.get());
    EXPECT_TRUE(settings.hideOutputWindow.get());
    EXPECT_EQ(settings.manualSources.get(), (std::vector{window5, firstDisplay}));
    EXPECT_EQ(settings.manualWindowSelections(), (ManualWindowSelections{{5, {5, {7, "a"}}}}));
}

TEST(AppSettingsLoading, AFollowModeInTheWrongCaseIsMouse) {
    MemoryUserDefaults defaults;
    defaults.values["kestrove.followMode"] = "Manual";
    EXPECT_EQ(AppSettings(defaults).followMode.get(), FollowMode::mouse);
}

TEST(AppSettingsLoading, OnlyAFrameRateOfZeroIsReplaced) {
    for (const std::int64_t stored : {7, 240, -3}) {
        MemoryUserDefaults defaults;
        defaults.values["kestrove.targetFPS"] = stored;
        EXPECT_EQ(AppSettings(defaults).targetFPS.get(), stored);
    }
    MemoryUserDefaults defaults;
    defaults.values["kestrove.targetFPS"] = std::int64_t{0};
    EXPECT_EQ(AppSettings(defaults).targetFPS.get(), 30);
}

TEST(AppSettingsLoading, OneMalformedSourceDropsTheWholeList) {
    MemoryUserDefaults defaults;
    defaults.putData("kestrove.manualSources", R"([{"display":{"_0":1}},{"display":{"_0":-1}}])");
    EXPECT_TRUE(AppSettings(defaults).manualSources.get().empty());
    EXPECT_EQ(defaults.dataText("kestrove.manualSources"),
              R"([{"display":{"_0":1}},{"display":{"_0":-1}}])")
        << "what is bad stays until the next write";
}

TEST(AppSettingsLoading, TheLaterOfTwoSelectionsOfOneWindowIsKept) {
    MemoryUserDefaults defaults;
    defaults.putData("kestrove.manualWindowSelections",
                     R"([{"windowID":5,"owner":{"processID":1,"bundleIdentifier":"first"}},)"
                     R"({"windowID":5,"owner":{"processID":2,"bundleIdentifier":"second"}}])");
    EXPECT_EQ(AppSettings(defaults).manualWindowSelections(),
              (ManualWindowSelections{{5, {5, {2, "second"}}}}))
        << "and it is kept although no such window is among the sources";
}

TEST(AppSettingsLoading, ABadKeyLeavesTheOthersAlone) {
    MemoryUserDefaults defaults;
    defaults.values["kestrove.followMode"] = std::int64_t{2};
    defaults.values["kestrove.targetFPS"] = "60";
    defaults.values["kestrove.alwaysOnTop"] = std::int64_t{1};
    defaults.values["kestrove.manualSources"] = R"([{"display":{"_0":1}}])";
    defaults.putData("kestrove.manualWindowSelections", "{}");
    defaults.values["kestrove.autoStart"] = true;
    const AppSettings settings(defaults);
    EXPECT_EQ(settings.followMode.get(), FollowMode::mouse);
    EXPECT_EQ(settings.targetFPS.get(), 30);
    EXPECT_FALSE(settings.alwaysOnTop.get());
    EXPECT_TRUE(settings.manualSources.get().empty());
    EXPECT_TRUE(settings.manualWindowSelections().empty());
    EXPECT_TRUE(settings.autoStart.get());
}

/// A store in which every key holds random bytes.
class RandomStore {
public:
    explicit RandomStore(std::uint32_t seed)
        : m_random(seed) {}

    void fill(MemoryUserDefaults& defaults) {
        for (const auto* key : {"kestrove.followMode", "kestrove.targetFPS", "kestrove.alwaysOnTop",
                                "kestrove.autoStart", "kestrove.hideOutputWindow",
                                "kestrove.manualSources", "kestrove.manualWindowSelections"}) {
            const auto bytes = randomBytes();
            if (m_random() % 2 == 0)
                defaults.putData(key, bytes);
            else
                defaults.values[key] = bytes;
        }
    }

private:
    std::string randomBytes() {
        std::string bytes(m_random() % 64, '\0');
        for (auto& byte : bytes)
            byte = static_cast<char>(m_random());
        // Something that begins like a list gets further into the decoder.
        return m_random() % 2 == 0 ? bytes : R"([{"display":{"_0":1}},{"window":)" + bytes;
    }

    std::mt19937 m_random;
};

TEST(AppSettingsLoading, RandomBytesInEveryKeyYieldTheDefaults) {
    for (std::uint32_t seed = 0; seed < 500; ++seed) {
        SCOPED_TRACE(seed);
        MemoryUserDefaults defaults;
        RandomStore(seed).fill(defaults);
        const AppSettings settings(defaults);
        expectDefaults(settings);
    }
}

TEST(AppSettingsLoading, EveryDamagedByteOfAStoredListYieldsAListOrNone) {
    const std::string intact = R"([{"windowID":5,"owner":{"processID":7,"bundleIdentifier":"a"}}])";
    for (std::size_t at = 0; at < intact.size(); ++at) {
        for (const char byte : std::string_view("\0\t 09-.eE\"\\/[]{},:ntf\x7F\x80\xC3\xFF", 25)) {
            auto damaged = intact;
            damaged[at] = byte;
            MemoryUserDefaults defaults;
            defaults.putData("kestrove.manualWindowSelections", damaged);
            const AppSettings settings(defaults);
            EXPECT_LE(settings.manualWindowSelections().size(), 1U) << damaged;
        }
        MemoryUserDefaults defaults;
        defaults.putData("kestrove.manualWindowSelections", intact.substr(0, at));
        EXPECT_TRUE(AppSettings(defaults).manualWindowSelections().empty()) << at;
    }
}

} // namespace
} // namespace kestrove

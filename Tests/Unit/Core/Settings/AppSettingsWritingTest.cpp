#include "Core/Settings/AppSettings.h"
#include "Tests/Support/ScriptedDesktop/MemoryUserDefaults.h"

#include <gtest/gtest.h>

namespace kestrove {
namespace {

constexpr auto sourcesKey = "kestrove.manualSources";
constexpr auto selectionsKey = "kestrove.manualWindowSelections";

const auto display1 = CaptureSource::display(1);
const auto display5 = CaptureSource::display(5);
const auto window5 = CaptureSource::window(5);
const auto window6 = CaptureSource::window(6);
const ManualWindowSelection selection5{5, {7, "a"}};
const ManualWindowSelection selection6{6, {8, "b"}};
constexpr auto selection5Text =
    R"([{"windowID":5,"owner":{"processID":7,"bundleIdentifier":"a"}}])";

class AppSettingsWriting : public testing::Test {
protected:
    std::vector<std::string> writes() { return m_defaults.writes.take(); }

    MemoryUserDefaults m_defaults;
    AppSettings m_settings{m_defaults};
};

TEST_F(AppSettingsWriting, EachFieldIsStoredUnderItsKey) {
    m_settings.followMode.set(FollowMode::manual);
    EXPECT_EQ(m_defaults.text("kestrove.followMode"), "manual");
    m_settings.targetFPS.set(0);
    EXPECT_EQ(m_defaults.integer("kestrove.targetFPS"), 0);
    m_settings.alwaysOnTop.set(true);
    EXPECT_EQ(m_defaults.boolean("kestrove.alwaysOnTop"), true);
    m_settings.autoStart.set(true);
    EXPECT_EQ(m_defaults.boolean("kestrove.autoStart"), true);
    m_settings.hideOutputWindow.set(true);
    EXPECT_EQ(m_defaults.boolean("kestrove.hideOutputWindow"), true);
    m_settings.hideOutputWindow.set(false);
    EXPECT_EQ(m_defaults.boolean("kestrove.hideOutputWindow"), false);
    EXPECT_EQ(writes(),
              (std::vector<std::string>{"kestrove.followMode", "kestrove.targetFPS",
                                        "kestrove.alwaysOnTop", "kestrove.autoStart",
                                        "kestrove.hideOutputWindow", "kestrove.hideOutputWindow"}));
}

TEST_F(AppSettingsWriting, AChangeIsAnnouncedBeforeItIsStoredAndStoredBeforeItIsWritten) {
    std::vector<std::string> seen;
    const auto subscription = m_settings.targetFPS.subscribe([&](std::int64_t announced) {
        seen.push_back("announced " + std::to_string(announced) + ", still " +
                       std::to_string(m_settings.targetFPS.get()) + ", written " +
                       std::to_string(m_defaults.integer("kestrove.targetFPS").value_or(-1)));
    });
    m_settings.targetFPS.set(15);
    m_settings.targetFPS.set(20);
    EXPECT_EQ(seen, (std::vector<std::string>{"announced 15, still 30, written -1",
                                              "announced 20, still 15, written 15"}));
}

TEST_F(AppSettingsWriting, ObserversGetTheCurrentValueFirst) {
    std::vector<bool> seen;
    const auto subscription =
        m_settings.alwaysOnTop.observe([&seen](bool value) { seen.push_back(value); });
    m_settings.alwaysOnTop.set(true);
    EXPECT_EQ(seen, (std::vector{false, true}));
}

TEST_F(AppSettingsWriting, TogglingAddsASourceWithItsSelectionAndRemovesBoth) {
    m_settings.toggleManualSource(display1);
    m_settings.toggleManualSource(window5, selection5);
    EXPECT_EQ(m_settings.manualSources.get(), (std::vector{display1, window5}));
    EXPECT_EQ(m_settings.manualWindowSelections(), (ManualWindowSelections{{5, selection5}}));
    EXPECT_EQ(m_defaults.dataText(sourcesKey), R"([{"display":{"_0":1}},{"window":{"_0":5}}])");
    EXPECT_EQ(m_defaults.dataText(selectionsKey), selection5Text);

    m_settings.toggleManualSource(window5, selection5);
    EXPECT_EQ(m_settings.manualSources.get(), std::vector{display1});
    EXPECT_TRUE(m_settings.manualWindowSelections().empty());
    EXPECT_EQ(m_defaults.dataText(sourcesKey), R"([{"display":{"_0":1}}])");
    EXPECT_EQ(m_defaults.dataText(selectionsKey), "[]");
}

TEST_F(AppSettingsWriting, TogglingRemovesOnlyTheFirstOfTwo) {
    m_settings.manualSources.set({display1, display5, display1});
    m_settings.toggleManualSource(display1);
    EXPECT_EQ(m_settings.manualSources.get(), (std::vector{display5, display1}));
}

TEST_F(AppSettingsWriting, TogglingAWindowWithoutASelectionRecordsNone) {
    m_settings.toggleManualSource(window5);
    EXPECT_EQ(m_settings.manualSources.get(), std::vector{window5});
    EXPECT_TRUE(m_settings.manualWindowSelections().empty());
}

TEST_F(AppSettingsWriting, ANewSelectionReplacesTheEarlierOne) {
    const ManualWindowSelection newer{5, {9, "c"}};
    m_settings.toggleManualSource(window5, selection5);
    m_settings.toggleManualSource(window5);
    m_settings.toggleManualSource(window5, newer);
    EXPECT_EQ(m_settings.manualWindowSelections(), (ManualWindowSelections{{5, newer}}));
}

TEST_F(AppSettingsWriting, ASelectionNeverOutlivesItsSource) {
    m_settings.toggleManualSource(window5, selection5);
    m_settings.toggleManualSource(window6, selection6);
    m_settings.manualSources.set({window6});
    EXPECT_EQ(m_settings.manualWindowSelections(), (ManualWindowSelections{{6, selection6}}));
    EXPECT_EQ(m_defaults.dataText(selectionsKey),
              R"([{"windowID":6,"owner":{"processID":8,"bundleIdentifier":"b"}}])");
}

TEST_F(AppSettingsWriting, ADisplayOfTheSameNumberDoesNotKeepASelection) {
    m_settings.toggleManualSource(window5, selection5);
    m_settings.manualSources.set({display5});
    EXPECT_TRUE(m_settings.manualWindowSelections().empty());
    EXPECT_EQ(m_defaults.dataText(selectionsKey), "[]");
}

TEST_F(AppSettingsWriting, TheSourcesAreWrittenBeforeTheSelections) {
    m_settings.manualSources.set({display1});
    EXPECT_EQ(writes(), (std::vector<std::string>{sourcesKey, selectionsKey}));
    m_settings.persistManualSources();
    EXPECT_EQ(writes(), (std::vector<std::string>{sourcesKey, selectionsKey}));
}

TEST_F(AppSettingsWriting, RemovingKeepsTheOrderOfTheRest) {
    m_settings.manualSources.set({window5, display1, window6, display5});
    m_settings.removeManualSources({display5, window5, CaptureSource::window(1)});
    EXPECT_EQ(m_settings.manualSources.get(), (std::vector{display1, window6}));
    EXPECT_EQ(m_defaults.dataText(sourcesKey), R"([{"display":{"_0":1}},{"window":{"_0":6}}])");
}

TEST_F(AppSettingsWriting, ANewProcessForgetsTheWindowsAndKeepsTheDisplays) {
    m_settings.toggleManualSource(window5, selection5);
    m_settings.toggleManualSource(display1);
    m_settings.toggleManualSource(window6);
    m_settings.toggleManualSource(display5);
    m_settings.discardPersistedManualWindowsForNewProcess();
    EXPECT_EQ(m_settings.manualSources.get(), (std::vector{display1, display5}));
    EXPECT_TRUE(m_settings.manualWindowSelections().empty());
    EXPECT_EQ(m_defaults.dataText(sourcesKey), R"([{"display":{"_0":1}},{"display":{"_0":5}}])");
    EXPECT_EQ(m_defaults.dataText(selectionsKey), "[]");
}

TEST_F(AppSettingsWriting, WhoeverIsToldOfTheForgottenWindowsFindsNoSelectionOfThem) {
    m_settings.toggleManualSource(window5, selection5);
    std::optional<std::size_t> selectionsSeen;
    const auto subscription = m_settings.manualSources.subscribe(
        [&](const auto&) { selectionsSeen = m_settings.manualWindowSelections().size(); });
    m_settings.discardPersistedManualWindowsForNewProcess();
    EXPECT_EQ(selectionsSeen, 0U);
    m_settings.toggleManualSource(window5, selection5);
    EXPECT_EQ(selectionsSeen, 1U) << "a selection is there before its window is announced";
}

TEST_F(AppSettingsWriting, AListThatCannotBeEncodedLeavesItsKeyAndWritesTheOther) {
    m_settings.toggleManualSource(window5, selection5);
    (void)writes();
    m_settings.toggleManualSource(window6, ManualWindowSelection{6, {8, "\xFF"}});
    EXPECT_EQ(writes(), std::vector<std::string>{sourcesKey});
    EXPECT_EQ(m_defaults.dataText(sourcesKey), R"([{"window":{"_0":5}},{"window":{"_0":6}}])");
    EXPECT_EQ(m_defaults.dataText(selectionsKey), selection5Text);
}

TEST_F(AppSettingsWriting, TheNextRunLoadsWhatThisOneWrote) {
    m_settings.followMode.set(FollowMode::manual);
    m_settings.targetFPS.set(60);
    m_settings.toggleManualSource(window5, selection5);
    m_settings.toggleManualSource(display1);
    const AppSettings next(m_defaults);
    EXPECT_EQ(next.followMode.get(), FollowMode::manual);
    EXPECT_EQ(next.targetFPS.get(), 60);
    EXPECT_EQ(next.manualSources.get(), m_settings.manualSources.get());
    EXPECT_EQ(next.manualWindowSelections(), m_settings.manualWindowSelections());
}

} // namespace
} // namespace kestrove

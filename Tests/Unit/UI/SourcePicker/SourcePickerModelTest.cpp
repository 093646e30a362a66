#include "UI/SourcePicker/SourcePickerModel.h"

#include "Platform/Simulated/SimulatedDesktop.h"
#include "Platform/Simulated/SimulatedMainLoop.h"
#include "Platform/Simulated/SimulatedScreenCapture.h"
#include "Platform/Simulated/SimulatedScreens.h"
#include "Tests/Support/ScriptedDesktop/RecordingLog.h"
#include "Tests/Support/ScriptedDesktop/ScriptedApplication.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace kestrove {
namespace {

class SourcePickerModelTest : public testing::Test {
protected:
    SourcePickerModelTest() {
        m_desktop.addDisplay({.displayID = 1, .frame = {0, 0, 1280, 800}, .name = "Built-in"});
        const auto editor = m_desktop.launchApplication(
            {.bundleIdentifier = "org.example.editor", .name = "Editor"});
        m_notes = m_desktop.openWindow({.processID = editor,
                                        .title = "notes.txt",
                                        .frame = {100, 100, 480, 240},
                                        .color = {220, 30, 30}});
        m_other = m_desktop.openWindow(
            {.processID = editor, .title = "other.txt", .frame = {600, 100, 400, 400}});
        m_changes.push_back(m_model->isLoading().subscribe(
            [this](bool isLoading) { note(isLoading ? "loading" : "loaded"); }));
        m_changes.push_back(
            m_model->displays().subscribe([this](const auto& list) { note("displays", list); }));
        m_changes.push_back(
            m_model->windows().subscribe([this](const auto& list) { note("windows", list); }));
    }

    void refresh() {
        m_scope.launch(m_model->refresh());
        m_loop.runUntilIdle();
    }
    void note(std::string what) { m_events.push_back(std::move(what)); }
    /// With the number of pictures among them.
    void note(const std::string& what, const SourcePickerModel::Previews& list) {
        const auto pictures =
            std::ranges::count_if(list, [](const auto& each) { return each.image != nullptr; });
        note(what + " " + std::to_string(pictures) + "/" + std::to_string(list.size()));
    }
    [[nodiscard]] const SourcePreview& window(WindowID identifier) const {
        const auto& list = m_model->windows().get();
        return *std::ranges::find(list, CaptureSource::window(identifier), &SourcePreview::id);
    }

    SimulatedMainLoop m_loop;
    SimulatedDesktop m_desktop{m_loop};
    SimulatedScreenCapture m_capture{m_desktop};
    SimulatedScreens m_screens{m_desktop};
    ScriptedApplication m_application;
    RecordingLog m_log;
    WindowID m_notes = 0;
    WindowID m_other = 0;
    WindowIDSet m_excluded;
    std::vector<std::string> m_events;
    std::unique_ptr<SourcePickerModel> m_model = std::make_unique<SourcePickerModel>(
        SourcePickerPlatform{m_loop, m_capture, m_screens, m_application, m_log},
        [this] { return m_excluded; });
    std::vector<Subscription> m_changes;
    TaskScope m_scope{m_loop};
};

using Events = std::vector<std::string>;

TEST_F(SourcePickerModelTest, IsEmptyAndIdleAtFirst) {
    EXPECT_TRUE(m_model->displays().get().empty());
    EXPECT_TRUE(m_model->windows().get().empty());
    EXPECT_FALSE(m_model->isLoading().get());
}

TEST_F(SourcePickerModelTest, ListsFirstAndThenTakesThePictures) {
    refresh();
    EXPECT_EQ(m_events, (Events{"loading", "displays 0/1", "windows 0/2", "displays 1/1",
                                "windows 1/2", "windows 2/2", "loaded"}));
    EXPECT_EQ(m_model->displays().get()[0].info.title, "Built-in");
    const auto& notes = window(m_notes);
    EXPECT_EQ(notes.info.title, "notes.txt");
    EXPECT_EQ(notes.info.subtitle, "Editor");
    EXPECT_EQ(notes.image->width, 480);
    EXPECT_EQ(notes.image->height, 240);
    const auto* const middle = &notes.image->pixels[(120U * 480 + 240) * 4];
    EXPECT_EQ(std::vector(middle, middle + 3), (std::vector<std::uint8_t>{30, 30, 220}));
}

TEST_F(SourcePickerModelTest, AsksForWhatIsOnScreen) {
    auto minimised = *m_desktop.findWindow(m_other);
    minimised.isOnScreen = false;
    m_desktop.setWindow(minimised);
    refresh();
    const auto& first = m_desktop.capture().records().front();
    EXPECT_EQ(first.call, CaptureCall::shareableContent);
    EXPECT_EQ(first.desktopWindows, DesktopWindows::excluded);
    EXPECT_EQ(first.windowsListed, WindowsListed::onScreenOnly);
    ASSERT_EQ(m_model->windows().get().size(), 1U) << "a minimised window is not offered";
    EXPECT_EQ(m_model->windows().get()[0].id, CaptureSource::window(m_notes));
}

TEST_F(SourcePickerModelTest, LeavesOutOurOwnWindowsAsTheyAreAtEachRefresh) {
    m_excluded = {m_other};
    refresh();
    EXPECT_EQ(m_model->windows().get().size(), 1U);
    const auto& records = m_desktop.capture().records();
    const auto ofDisplay = std::ranges::find(
        records, std::optional(ContentFilter(DisplayFilter(1, {m_other}))), &CaptureRecord::filter);
    EXPECT_NE(ofDisplay, records.end()) << "nor are they in the display's picture";
    m_excluded = {};
    refresh();
    EXPECT_EQ(m_model->windows().get().size(), 2U);
}

TEST_F(SourcePickerModelTest, TakesAllPicturesAtTheSameTimeAndPublishesEachWhenItIsThere) {
    auto& operation = m_desktop.capture().captureImage;
    operation.next(SimulatedOutcome::succeeds(Seconds(3)));
    operation.next(SimulatedOutcome::succeeds(Seconds(2)));
    operation.next(SimulatedOutcome::succeeds(Seconds(1)));
    refresh();
    EXPECT_EQ(operation.callCount(), 3);
    m_events.clear();
    m_loop.advance(Seconds(3));
    EXPECT_EQ(m_events, (Events{"windows 1/2", "windows 2/2", "displays 1/1", "loaded"}));
    EXPECT_EQ(m_loop.now(), Seconds(3)) << "not one after the other";
}

TEST_F(SourcePickerModelTest, GoesWithoutThePictureThatCannotBeTaken) {
    m_desktop.capture().captureImage.next(SimulatedOutcome::fails(PlatformError("test", 7, "no")));
    refresh();
    EXPECT_EQ(m_model->displays().get()[0].image, nullptr);
    EXPECT_NE(window(m_notes).image, nullptr);
    EXPECT_FALSE(m_model->isLoading().get());
}

TEST_F(SourcePickerModelTest, KeepsWhatItHadWhenTheDesktopRefuses) {
    refresh();
    m_log.lines.clear();
    m_events.clear();
    m_desktop.capture().shareableContent.next(
        SimulatedOutcome::fails(PlatformError("Refusal", -3801, "declined")));
    refresh();
    EXPECT_EQ(m_events, (Events{"loading", "loaded"}));
    EXPECT_EQ(m_model->windows().get().size(), 2U);
    EXPECT_EQ(m_log.lines, (std::vector<RecordingLog::Line>{
                               {"dev.kestrove", "", LogLevel::standard,
                                "[kestrove] picker refresh failed (domain=Refusal, code=-3801)"}}));
}

TEST_F(SourcePickerModelTest, EndsWithoutASource) {
    m_desktop.closeWindow(m_notes);
    m_desktop.closeWindow(m_other);
    m_desktop.removeDisplay(1);
    refresh();
    EXPECT_EQ(m_events, (Events{"loading", "displays 0/0", "windows 0/0", "loaded"}));
}

TEST_F(SourcePickerModelTest, SkipsThePictureOfATileThatHasGone) {
    auto& operation = m_desktop.capture().captureImage;
    operation.next(SimulatedOutcome::succeeds());
    operation.next(SimulatedOutcome::held());
    operation.next(SimulatedOutcome::held());
    refresh();
    m_excluded = {m_other};
    refresh();
    ASSERT_EQ(m_model->windows().get().size(), 1U);
    m_events.clear();
    operation.release();
    m_loop.runUntilIdle();
    EXPECT_EQ(m_model->windows().get().size(), 1U);
    EXPECT_EQ(m_events, (Events{"windows 1/1", "loaded"})) << "the other one found no tile";
}

TEST_F(SourcePickerModelTest, LoadsUntilTheLastOfOverlappingRefreshesHasEnded) {
    auto& operation = m_desktop.capture().shareableContent;
    operation.always(SimulatedOutcome::succeeds(Seconds(2)));
    refresh();
    m_loop.advance(Seconds(1));
    refresh();
    m_loop.advance(Seconds(1));
    EXPECT_TRUE(m_model->isLoading().get());
    EXPECT_EQ(m_model->windows().get().size(), 2U) << "the first has what it asked for";
    m_loop.advance(Seconds(1));
    EXPECT_FALSE(m_model->isLoading().get());
    EXPECT_EQ(std::ranges::count(m_events, "loading"), 1);
    EXPECT_EQ(std::ranges::count(m_events, "loaded"), 1);
}

TEST_F(SourcePickerModelTest, MayBeDroppedAtAnyTime) {
    m_desktop.capture().captureImage.always(SimulatedOutcome::held());
    refresh();
    m_scope.cancelAll();
    m_desktop.capture().captureImage.release();
    m_loop.runUntilIdle();
    EXPECT_EQ(window(m_notes).image, nullptr);
}

} // namespace
} // namespace kestrove

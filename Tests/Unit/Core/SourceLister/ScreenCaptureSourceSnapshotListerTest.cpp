#include "Core/SourceLister/ScreenCaptureSourceSnapshotLister.h"

#include "Async/TaskScope.h"
#include "Platform/Simulated/SimulatedMainLoop.h"
#include "Tests/Support/ScriptedDesktop/RecordingLog.h"
#include "Tests/Support/ScriptedDesktop/ScriptedApplication.h"
#include "Tests/Support/ScriptedDesktop/ScriptedScreenCapture.h"
#include "Tests/Support/ScriptedDesktop/ScriptedScreens.h"

#include <gtest/gtest.h>

#include <memory>

namespace kestrove {
namespace {

using Result = std::expected<SourceLister::Snapshot, PlatformError>;

class ScreenCaptureSourceSnapshotListerTest : public testing::Test {
protected:
    static Task<void> fetch(SourceSnapshotListing& lister, WindowIDSet excluded,
                            std::optional<Result>* result) {
        *result = co_await lister.fetch(std::move(excluded));
    }
    void startFetch(WindowIDSet excluded) {
        m_scope->launch(fetch(m_lister, std::move(excluded), &m_result));
        m_loop.runUntilIdle();
    }
    void answer(const ScriptedScreenCapture::Content& content) {
        m_capture.answer(content);
        m_loop.runUntilIdle();
    }

    SimulatedMainLoop m_loop;
    ScriptedScreenCapture m_capture{m_loop};
    ScriptedScreens m_screens;
    ScriptedApplication m_application;
    RecordingLog m_log;
    ScreenCaptureSourceSnapshotLister m_lister{m_capture, m_screens, m_application, m_log};
    std::optional<Result> m_result;
    std::unique_ptr<TaskScope> m_scope = std::make_unique<TaskScope>(m_loop);
};

TEST_F(ScreenCaptureSourceSnapshotListerTest, AsksForAllButTheDesktopsOwnWindows) {
    startFetch({});
    EXPECT_EQ(m_capture.requests,
              (std::vector{std::pair(DesktopWindows::excluded, WindowsListed::all)}));
    EXPECT_FALSE(m_result) << "it waits for the desktop";
}

TEST_F(ScreenCaptureSourceSnapshotListerTest, MakesASnapshotOfTheContent) {
    m_application.identifier = "org.example.own";
    startFetch({6});
    m_screens.add({0, 0, 1920, 1080}, 1, "Built-in");
    ShareableContent content;
    content.displays = {{1, 1920, 1080}};
    const CapturableApplication editor{"org.example.editor", "Editor", 10};
    const CapturableApplication own{"org.example.own", "Own", 11};
    content.windows = {{5, 0, "Notes", {0, 0, 300, 300}, true, editor},
                       {6, 0, "Output", {0, 0, 300, 300}, true, editor},
                       {7, 0, "Ours", {0, 0, 300, 300}, true, own}};
    answer(content);
    ASSERT_TRUE(m_result && m_result->has_value());
    const auto& snapshot = **m_result;
    ASSERT_EQ(snapshot.lists.displays.size(), 1U);
    EXPECT_EQ(snapshot.lists.displays[0].title, "Built-in") << "screens are read after the wait";
    ASSERT_EQ(snapshot.lists.windows.size(), 1U);
    EXPECT_EQ(snapshot.lists.windows[0].source, CaptureSource::window(5));
    EXPECT_EQ(snapshot.existingSources,
              (CaptureSourceSet{CaptureSource::display(1), CaptureSource::window(5),
                                CaptureSource::window(7)}));
    EXPECT_EQ(m_log.lines.size(), 1U);
}

TEST_F(ScreenCaptureSourceSnapshotListerTest, PassesTheDesktopsRefusalOnUnchanged) {
    startFetch({});
    const PlatformError refused("X11", 10, "access denied");
    answer(std::unexpected(refused));
    ASSERT_TRUE(m_result);
    ASSERT_FALSE(m_result->has_value());
    EXPECT_EQ(m_result->error(), refused);
    EXPECT_TRUE(m_log.lines.empty()) << "no snapshot is made";
}

TEST_F(ScreenCaptureSourceSnapshotListerTest, ADroppedFetchIgnoresTheAnswer) {
    startFetch({});
    m_scope.reset();
    answer(ShareableContent());
    EXPECT_FALSE(m_result);
    EXPECT_TRUE(m_log.lines.empty());
}

} // namespace
} // namespace kestrove

#include "Core/ActiveSourceResolver/ActiveSourceResolver.h"
#include "Tests/Support/ScriptedDesktop/ScriptedFollowedDesktop.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace kestrove {
namespace {

constexpr ProcessID editor = 10;
constexpr ProcessID browser = 20;
constexpr Point onFirst{100, 100};
constexpr Point onSecond{2000, 500};
constexpr Point onThird{-100, 100};
/// Window server coordinates; the first screen is 1080 high.
constexpr Rect boundsOnFirst{200, 300, 400, 300};
constexpr Rect boundsOnSecond{2100, 300, 400, 300};

const auto display1 = CaptureSource::display(1);
const auto display2 = CaptureSource::display(2);
const auto display3 = CaptureSource::display(3);
const auto window500 = CaptureSource::window(500);
const auto window600 = CaptureSource::window(600);

class ActiveSourceResolverTest : public testing::Test {
protected:
    using Calls = std::vector<std::string>;
    using Windows = std::vector<WindowDescription>;

    ActiveSourceResolverTest() {
        m_desktop.screens.add({0, 0, 1920, 1080}, 1);
        m_desktop.screens.add({1920, 200, 1440, 900}, 2);
        m_desktop.screens.add({-1000, 0, 1000, 800}, 3);
        m_desktop.pointer.point = onFirst;
        m_subscription =
            m_resolver.currentSource().subscribe([this](std::optional<CaptureSource> now) {
                m_desktop.calls.add(
                    now ? "published " + std::string(now->isWindow() ? "window " : "display ") +
                              std::to_string(now->identifier())
                        : "published none");
            });
    }

    [[nodiscard]] Calls calls() { return m_desktop.calls.take(); }
    static WindowDescription window(WindowID number, ProcessID owner, Rect bounds) {
        return ScriptedFollowedDesktop::window(number, owner, bounds);
    }
    /// The editor is in front; these are the windows, front to back.
    void setWindows(const Windows& windows) {
        m_desktop.workspace.frontmost = RunningApplication{editor, "org.example.editor"};
        m_desktop.windowServer.lists[ScriptedFollowedDesktop::onScreenWindows] = windows;
        m_desktop.windowServer.lists[ScriptedFollowedDesktop::allWindows] = windows;
    }
    std::optional<CaptureSource> pick(std::vector<CaptureSource> candidates) {
        m_resolver.setCandidates(std::move(candidates));
        m_resolver.recompute();
        return m_resolver.currentSource().get();
    }

    ScriptedFollowedDesktop m_desktop;
    ActiveSourceResolver m_resolver{m_desktop.seam(), Seconds(0.15)};
    Subscription m_subscription;
};

TEST_F(ActiveSourceResolverTest, HasNoSourceAndWatchesNothingAtFirst) {
    EXPECT_EQ(m_resolver.currentSource().get(), std::nullopt);
    EXPECT_TRUE(m_resolver.candidates().empty());
    m_resolver.setCandidates({display1, display2});
    EXPECT_EQ(calls(), Calls()) << "candidates alone decide nothing";
}

TEST_F(ActiveSourceResolverTest, WithoutCandidatesTheSourceIsAbsent) {
    EXPECT_EQ(pick({}), std::nullopt);
    EXPECT_EQ(calls(), Calls()) << "absent already: nothing is sent";
    pick({display1});
    (void)calls();
    EXPECT_EQ(pick({}), std::nullopt);
    EXPECT_EQ(calls(), Calls{"published none"});
}

TEST_F(ActiveSourceResolverTest, ASingleCandidateIsPickedWithoutAskingTheDesktop) {
    EXPECT_EQ(pick({window500}), window500);
    EXPECT_EQ(calls(), Calls{"published window 500"});
}

TEST_F(ActiveSourceResolverTest, ThePickedWindowInFrontBeatsThePointer) {
    setWindows({window(700, browser, boundsOnFirst), window(500, editor, boundsOnSecond),
                window(600, editor, boundsOnFirst)});
    EXPECT_EQ(pick({display1, window600, window500}), window500);
    EXPECT_EQ(calls(), (Calls{"frontmost application", "window list 17", "published window 500"}))
        << "the pointer is not read";
}

TEST_F(ActiveSourceResolverTest, ThePickedDisplayUnderThePointerIsNext) {
    m_desktop.pointer.point = onSecond;
    setWindows({window(700, editor, boundsOnFirst), window(500, editor, boundsOnFirst)});
    EXPECT_EQ(pick({display1, display2, window500}), display2);
    EXPECT_EQ(calls(), (Calls{"frontmost application", "window list 17", "pointer location",
                              "published display 2"}));
}

TEST_F(ActiveSourceResolverTest, ThePickedDisplayWithTheFrontWindowIsNext) {
    m_desktop.pointer.point = onFirst;
    setWindows({window(700, editor, boundsOnSecond), window(500, editor, boundsOnFirst)});
    EXPECT_EQ(pick({window500, display2}), display2);
    EXPECT_EQ(calls(), (Calls{"frontmost application", "window list 17", "pointer location",
                              "window list 0", "published display 2"}));
}

TEST_F(ActiveSourceResolverTest, TheCurrentSourceIsKeptBeforeTheFirst) {
    m_desktop.pointer.point = onSecond;
    EXPECT_EQ(pick({display1, display2}), display2);
    m_desktop.pointer.point = onThird;
    (void)calls();
    EXPECT_EQ(pick({display1, display2}), display2);
    EXPECT_EQ(calls(), (Calls{"frontmost application", "pointer location"}))
        << "the same source is not sent again";
}

TEST_F(ActiveSourceResolverTest, OtherwiseTheFirstCandidateIsPicked) {
    m_desktop.pointer.point = onThird;
    EXPECT_EQ(pick({window600, display1, display2}), window600) << "nothing was current";
    EXPECT_EQ(pick({display1, display2}), display1) << "the current one was picked no more";
}

TEST_F(ActiveSourceResolverTest, ADisplayAndAWindowOfOneNumberAreNotMixedUp) {
    m_desktop.pointer.point = onThird;
    setWindows({window(1, editor, {-900, 300, 400, 300})});
    EXPECT_EQ(pick({display2, display1}), display2) << "window 1 in front is not display 1";
    EXPECT_EQ(pick({display2, CaptureSource::window(3)}), display2)
        << "display 3 under the pointer is not window 3";
}

TEST_F(ActiveSourceResolverTest, ThePointersGapMeansTheMainDisplay) {
    m_desktop.pointer.point = {2000, 10};
    EXPECT_EQ(pick({display2, display1}), display1);
}

TEST_F(ActiveSourceResolverTest, OnlyNormalNumberedWindowsOfTheFrontApplicationCanBeInFront) {
    auto panel = window(1, editor, boundsOnFirst);
    panel.layer = 3;
    auto unnumbered = window(1, editor, boundsOnFirst);
    unnumbered.windowNumber.reset();
    auto unowned = window(600, editor, boundsOnFirst);
    unowned.ownerProcessID.reset();
    auto withoutLayer = window(500, editor, boundsOnFirst);
    withoutLayer.layer.reset();
    m_desktop.pointer.point = onThird;
    setWindows({window(600, browser, boundsOnFirst), panel, unnumbered, unowned, withoutLayer,
                window(600, editor, boundsOnFirst)});
    EXPECT_EQ(pick({window600, CaptureSource::window(1), window500}), window500);
}

TEST_F(ActiveSourceResolverTest, AListThatCannotBeReadHasNoFrontWindow) {
    m_desktop.workspace.frontmost = RunningApplication{editor, std::nullopt};
    m_desktop.pointer.point = onThird;
    EXPECT_EQ(pick({display2, window500}), display2);
    EXPECT_EQ(calls(), (Calls{"frontmost application", "window list 17", "pointer location",
                              "published display 2"}));
}

TEST_F(ActiveSourceResolverTest, TheFrontWindowsDisplayNeedsItsRowAndItsBounds) {
    m_desktop.pointer.point = onThird;
    auto& all = m_desktop.windowServer.lists[ScriptedFollowedDesktop::allWindows];
    setWindows({window(700, editor, boundsOnSecond)});
    all.clear();
    EXPECT_EQ(pick({display1, display2}), display1) << "the window has gone meanwhile";
    m_desktop.windowServer.lists.erase(ScriptedFollowedDesktop::allWindows);
    EXPECT_EQ(pick({display1, display2}), display1) << "the list cannot be read";
    setWindows({window(700, editor, boundsOnSecond)});
    m_desktop.windowServer.lists[ScriptedFollowedDesktop::allWindows][0].bounds.reset();
    EXPECT_EQ(pick({display1, display2}), display1) << "the desktop does not say where it is";
    setWindows({window(700, editor, boundsOnSecond)});
    EXPECT_EQ(pick({display1, display2}), display2);
}

TEST_F(ActiveSourceResolverTest, HeightsAreFlippedAtTheFirstScreenOnly) {
    m_desktop.screens.list.clear();
    m_desktop.screens.add({0, 0, 1920, 1080}, 1);
    m_desktop.screens.add({0, 1080, 1920, 1080}, 2);
    m_desktop.screens.add({-1000, 0, 1000, 800}, 3);
    m_desktop.pointer.point = onThird;
    setWindows({window(700, editor, {0, 100, 400, 200})});
    EXPECT_EQ(pick({display2, display1}), display1) << "1080 - 200 = 880";
    setWindows({window(700, editor, {0, -1000, 400, 200})});
    EXPECT_EQ(pick({display1, display2}), display2) << "1080 + 900 = 1980";
}

TEST_F(ActiveSourceResolverTest, StartingWatchesAndThenDecidesAtOnce) {
    m_resolver.setCandidates({display1, display2});
    m_resolver.start();
    EXPECT_EQ(calls(), (Calls{"watch global pointer", "watch local pointer", "watch activation",
                              "frontmost application", "pointer location", "published display 1"}));
    m_resolver.start();
    EXPECT_EQ(calls(), (Calls{"unwatch global pointer", "unwatch local pointer",
                              "unwatch activation", "watch global pointer", "watch local pointer",
                              "watch activation", "frontmost application", "pointer location"}));
}

TEST_F(ActiveSourceResolverTest, StoppingDropsWhatIsPendingAndKeepsTheSource) {
    m_resolver.setCandidates({display1, display2});
    m_resolver.start();
    m_desktop.movePointer(onSecond);
    (void)calls();
    m_resolver.stop();
    EXPECT_EQ(calls(),
              (Calls{"unwatch global pointer", "unwatch local pointer", "unwatch activation"}));
    m_desktop.loop.advance(Seconds(1));
    EXPECT_EQ(calls(), Calls());
    EXPECT_EQ(m_resolver.currentSource().get(), display1);
}

TEST_F(ActiveSourceResolverTest, ABurstOfMovesAndActivationsDecidesOnceAfterTheLast) {
    m_resolver.setCandidates({display1, display2});
    m_resolver.start();
    (void)calls();
    for (int move = 0; move < 30; ++move) {
        m_desktop.movePointer(onSecond);
        m_desktop.loop.advance(Seconds(0.1));
        m_desktop.pointer.localMoved.emit();
        m_desktop.loop.advance(Seconds(0.1));
        m_desktop.workspace.activated.emit({editor, std::nullopt});
        m_desktop.loop.advance(Seconds(0.1));
    }
    m_desktop.loop.advance(Seconds(0.049));
    EXPECT_EQ(calls(), Calls());
    m_desktop.loop.advance(Seconds(0.002));
    EXPECT_EQ(calls(), (Calls{"frontmost application", "pointer location", "published display 2"}));
    m_desktop.loop.advance(Seconds(10));
    EXPECT_EQ(calls(), Calls());
}

TEST_F(ActiveSourceResolverTest, GoneWithADecisionPendingItDoesNothing) {
    auto resolver = std::make_unique<ActiveSourceResolver>(m_desktop.seam(), Seconds(0.15));
    resolver->start();
    m_desktop.movePointer(onSecond);
    EXPECT_EQ(m_desktop.loop.timerCount(), 1U);
    resolver.reset();
    EXPECT_EQ(m_desktop.loop.timerCount(), 0U);
    EXPECT_FALSE(m_desktop.pointer.globalMoved.hasSubscribers());
    EXPECT_FALSE(m_desktop.workspace.activated.hasSubscribers());
}

} // namespace
} // namespace kestrove

#include "UI/SourcePicker/SourcePickerWindowController.h"

#include "Platform/Simulated/SimulatedDesktop.h"
#include "Platform/Simulated/SimulatedScreenCapture.h"
#include "Platform/Simulated/SimulatedScreens.h"
#include "Tests/Support/QtSpin.h"
#include "Tests/Support/ScriptedDesktop/ScriptedApplication.h"
#include "Tests/Unit/Core/AppController/ControllerBench.h"
#include "UI/SourcePicker/SourceTile.h"

#include <QApplication>
#include <QEnterEvent>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace kestrove {
namespace {

/// The picker over a real controller on the bench, which knows the same two displays and windows as
/// the desktop.
class SourcePickerViewTest : public testing::Test {
protected:
    SourcePickerViewTest() {
        bench.create();
        desktop.addDisplay({.displayID = 1, .frame = {0, 0, 160, 100}, .name = "Built-in"});
        desktop.addDisplay({.displayID = 2, .frame = {160, 0, 160, 100}, .name = "Side"});
        const auto process = desktop.launchApplication({.processID = editor.processID,
                                                        .bundleIdentifier = editor.bundleIdentifier,
                                                        .name = "Editor"});
        for (const WindowID window : {5U, 6U})
            desktop.openWindow({.windowID = window,
                                .processID = process,
                                .title = "<b>" + std::to_string(window) + "</b>",
                                .frame = {0, 0, 200, 100},
                                .color = {220, 30, 30}});
        // Most tests need no pictures, and drawing them takes its time.
        desktop.capture().captureImage.always(
            SimulatedOutcome::fails(PlatformError("test", 1, "no picture")));
        picker.emplace(
            SourcePickerWindowController::Surroundings{
                .settings = *bench.settings,
                .controller = *bench.controller,
                .application = application,
                .platform = {bench.loop, capture, screens, application, bench.log},
                .bringToFront = [this](QWidget&) { ++broughtToFront; }},
            [] { return WindowIDSet(); });
    }

    void show() {
        picker->show();
        settle();
    }
    void settle() {
        bench.loop.runUntilIdle();
        QApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    QWidget& window() { return picker->window(); }
    /// From top left to bottom right.
    std::vector<SourceTile*> tiles() {
        std::vector<SourceTile*> found;
        for (auto* const each : window().findChildren<QAbstractButton*>()) {
            auto* const tile = dynamic_cast<SourceTile*>(each);
            if (tile != nullptr && tile->isVisible())
                found.push_back(tile);
        }
        std::ranges::sort(found, {}, [this](const SourceTile* tile) {
            const auto place = tile->mapTo(&window(), QPoint());
            return std::pair(place.y(), place.x());
        });
        return found;
    }
    SourceTile& tile(CaptureSource source) {
        for (auto* const each : tiles()) {
            if (each->content().preview.id == source)
                return *each;
        }
        ADD_FAILURE() << "no such tile";
        std::abort();
    }
    bool shows(const std::string& text) {
        return std::ranges::any_of(window().findChildren<QLabel*>(), [&](const QLabel* label) {
            return label->isVisible() && label->text().toStdString() == text;
        });
    }
    std::optional<CaptureSource> focused() {
        const auto* const one = dynamic_cast<SourceTile*>(window().focusWidget());
        return one ? std::optional(one->content().preview.id) : std::nullopt;
    }
    void press(int key) {
        auto* const target = window().focusWidget() ? window().focusWidget() : &window();
        QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(target, &down);
        QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier);
        QApplication::sendEvent(target, &up);
        settle();
    }

    ControllerBench bench;
    SimulatedDesktop desktop{bench.loop};
    SimulatedScreenCapture capture{desktop};
    SimulatedScreens screens{desktop};
    ScriptedApplication application;
    int broughtToFront = 0;
    std::optional<SourcePickerWindowController> picker;
};

using Sources = std::vector<CaptureSource>;

TEST_F(SourcePickerViewTest, ComesToTheFrontWithItsTitle) {
    show();
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(window().windowTitle().toStdString(), "kestrove — ソース選択");
    EXPECT_EQ(application.policy, ActivationPolicy::regular);
    EXPECT_EQ(broughtToFront, 1);
    EXPECT_TRUE(shows("ソースを選択"));
    EXPECT_TRUE(shows("クリックで選択／解除。複数選んだ場合はアクティブなものが自動表示されます"));
    EXPECT_TRUE(shows("ディスプレイ"));
    EXPECT_TRUE(shows("アプリケーションウィンドウ"));
}

TEST_F(SourcePickerViewTest, ListsEachSourceOnceItIsShown) {
    desktop.capture().captureImage.always(SimulatedOutcome::held());
    show();
    Sources listed;
    for (const auto* const each : tiles())
        listed.push_back(each->content().preview.id);
    EXPECT_EQ(listed, (Sources{display1, display2, window6, window5}));
    EXPECT_EQ(desktop.capture().shareableContent.callCount(), 1) << "one refresh for one showing";
    const auto* const progress = window().findChild<QProgressBar*>();
    EXPECT_TRUE(progress->isVisible());
    EXPECT_EQ(progress->maximum(), 4);
    EXPECT_EQ(progress->value(), 0);
    desktop.capture().captureImage.release();
    settle();
    EXPECT_FALSE(progress->isVisible());
    const auto shown = tile(window5).grab().toImage();
    EXPECT_EQ(shown.pixelColor(shown.width() / 2, shown.height() / 3), QColor(220, 30, 30));
}

TEST_F(SourcePickerViewTest, SaysThatItLoadsAndThatThereIsNothing) {
    desktop.setRecordingAllowed(false);
    desktop.capture().shareableContent.always(SimulatedOutcome::held());
    show();
    EXPECT_TRUE(shows("ソースを読み込んでいます…"));
    desktop.capture().shareableContent.release();
    settle();
    EXPECT_TRUE(shows("利用可能なソースがありません"));
    EXPECT_TRUE(tiles().empty());
    EXPECT_FALSE(shows("ディスプレイ"));
}

TEST_F(SourcePickerViewTest, RefreshesByItsButton) {
    show();
    desktop.closeWindow(6);
    window().findChild<QPushButton*>()->click();
    settle();
    EXPECT_EQ(tiles().size(), 3U);
}

TEST_F(SourcePickerViewTest, AClickTicksAndAnotherTakesItBack) {
    show();
    tile(window5).click();
    settle();
    EXPECT_EQ(bench.settings->followMode.get(), FollowMode::manual);
    EXPECT_EQ(bench.settings->manualSources.get(), Sources{window5});
    EXPECT_EQ(bench.settings->manualWindowSelections().at(5).owner, editor);
    EXPECT_TRUE(tile(window5).isChecked());
    EXPECT_FALSE(tile(window6).isChecked());
    EXPECT_TRUE(shows("1 件選択中"));
    tile(window5).click();
    settle();
    EXPECT_FALSE(tile(window5).isChecked());
    EXPECT_TRUE(shows("0 件選択中"));
}

TEST_F(SourcePickerViewTest, FollowsWhatIsPickedAndShownElsewhere) {
    show();
    bench.startAndRun();
    settle();
    EXPECT_EQ(tile(display1).accessibleDescription().toStdString(), "160 × 100、LIVE");
    bench.settings->followMode.set(FollowMode::manual);
    bench.settings->manualSources.set({window6});
    bench.loop.advance(Seconds(1));
    settle();
    EXPECT_TRUE(tile(window6).isChecked());
    EXPECT_EQ(tile(window6).accessibleDescription().toStdString(), "Editor、LIVE");
    EXPECT_EQ(tile(display1).accessibleDescription().toStdString(), "160 × 100");
}

TEST_F(SourcePickerViewTest, TellsNamesAsTheyAre) {
    show();
    EXPECT_EQ(tile(window5).accessibleName().toStdString(), "<b>5</b>");
    EXPECT_EQ(tile(window5).toolTip().toStdString(), "&lt;b&gt;5&lt;/b&gt;") << "no markup";
}

TEST_F(SourcePickerViewTest, IsUsedByTheKeyboardAlone) {
    show();
    EXPECT_EQ(focused(), display1);
    press(Qt::Key_Right);
    EXPECT_EQ(focused(), display2);
    press(Qt::Key_Down);
    EXPECT_EQ(focused(), window5);
    press(Qt::Key_Space);
    EXPECT_EQ(bench.settings->manualSources.get(), Sources{window5});
    press(Qt::Key_Left);
    press(Qt::Key_Return);
    EXPECT_EQ(bench.settings->manualSources.get(), (Sources{window5, window6}));
    press(Qt::Key_Home);
    EXPECT_EQ(focused(), display1);
    press(Qt::Key_End);
    EXPECT_EQ(focused(), window5);
    press(Qt::Key_Escape);
    EXPECT_FALSE(window().isVisible());
}

TEST_F(SourcePickerViewTest, PassesWindowsOfWhichNobodyKnowsWhoseTheyAre) {
    const auto nobody = CaptureSource::window(7);
    desktop.openWindow({.windowID = 7,
                        .processID = desktop.launchApplication({.processID = 0, .name = "Far"}),
                        .title = "far",
                        .frame = {0, 0, 200, 100}});
    show();
    ASSERT_EQ(tiles().size(), 5U);
    EXPECT_FALSE(tile(nobody).isEnabled());
    Sources visited{*focused()};
    for (int step = 0; step < 5; ++step) {
        press(Qt::Key_Right);
        if (focused() != visited.back())
            visited.push_back(*focused());
    }
    EXPECT_EQ(visited.size(), 4U);
    EXPECT_EQ(std::ranges::find(visited, nobody), visited.end());
    press(Qt::Key_End);
    EXPECT_NE(focused(), nobody);
    tile(nobody).click();
    settle();
    EXPECT_TRUE(bench.settings->manualSources.get().empty());
}

TEST_F(SourcePickerViewTest, IsOneStopOfTheTabKey) {
    show();
    press(Qt::Key_Right);
    Sources stops;
    for (const auto* const each : tiles()) {
        if ((each->focusPolicy() & Qt::TabFocus) != 0)
            stops.push_back(each->content().preview.id);
    }
    EXPECT_EQ(stops, Sources{display2});
}

TEST_F(SourcePickerViewTest, KeepsTheKeyboardsPlaceWhileListsAreRefreshed) {
    show();
    press(Qt::Key_Down);
    ASSERT_EQ(focused(), window6);
    const auto* const before = &tile(window6);
    desktop.raiseWindow(5);
    picker->show();
    settle();
    EXPECT_EQ(focused(), window6);
    EXPECT_EQ(&tile(window6), before);
    desktop.closeWindow(6);
    window().findChild<QPushButton*>()->click();
    settle();
    EXPECT_EQ(focused(), display1) << "its tile has gone";
}

TEST_F(SourcePickerViewTest, FillsTheWidthWithEqualTiles) {
    show();
    for (const auto& [width, columns] : {std::pair{1000, 2}, {640, 2}, {360, 1}}) {
        window().resize(width, 500);
        settle();
        std::set<int> lefts;
        std::set<int> widths;
        for (const auto* const each : tiles()) {
            lefts.insert(each->mapTo(&window(), QPoint()).x());
            widths.insert(each->width());
            EXPECT_LE(each->mapTo(&window(), QPoint(each->width(), 0)).x(), width);
        }
        EXPECT_EQ(lefts.size(), static_cast<std::size_t>(columns)) << width;
        EXPECT_EQ(widths.size(), 1U) << width;
    }
}

TEST_F(SourcePickerViewTest, HidesWhenAnotherWindowTakesTheKeyboardAndComesBackFresh) {
    show();
    ASSERT_TRUE(spinUntil([this] { return window().isActiveWindow(); }));
    press(Qt::Key_End);
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(spinUntil([this] { return !window().isVisible(); }));
    desktop.closeWindow(6);
    show();
    EXPECT_TRUE(window().isVisible());
    EXPECT_EQ(tiles().size(), 3U);
    EXPECT_EQ(focused(), display1);
}

} // namespace
} // namespace kestrove

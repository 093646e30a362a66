#include "Tests/Contract/ContractSuites.h"

#include <algorithm>
#include <cstddef>

namespace kestrove::contract {

namespace {

std::optional<CapturableWindow> findWindow(const ShareableContent& content, WindowID window) {
    const auto found = std::ranges::find(content.windows, window, &CapturableWindow::windowID);
    return found == content.windows.end() ? std::nullopt : std::optional(*found);
}

StreamConfiguration sized(std::int64_t width, std::int64_t height) {
    StreamConfiguration configuration;
    configuration.minimumFrameInterval = {1, 30};
    configuration.width = width;
    configuration.height = height;
    return configuration;
}

Color colorAt(const StillImage& image, int x, int y) {
    const auto* pixel = &image.pixels[(static_cast<std::size_t>(y) * image.width + x) * 4];
    return {pixel[2], pixel[1], pixel[0]};
}

constexpr Color red{220, 30, 30};
constexpr Color green{30, 200, 60};

} // namespace

TEST_P(ScreenCaptureContract, ContentListsTheScreensByTheirIdentifiersInPoints) {
    const auto content = run(
        desktop().screenCapture().shareableContent(DesktopWindows::included, WindowsListed::all));
    ASSERT_TRUE(content && content->has_value());
    for (const auto& screen : desktop().screens().screens()) {
        const auto& displays = (*content)->displays;
        const auto found =
            std::ranges::find(displays, *screen.displayID, &CapturableDisplay::displayID);
        ASSERT_NE(found, displays.end());
        EXPECT_EQ(found->width, screen.frame.width);
        EXPECT_EQ(found->height, screen.frame.height);
    }
    EXPECT_EQ((*content)->displays.size(), 2U);
}

TEST_P(ScreenCaptureContract, ContentDescribesWindowsFrontToBack) {
    const auto process = desktop().startApplication("painter");
    const Rect frame{120, 90, 410, 310};
    const auto back =
        desktop().openWindow({.processID = process, .title = "a title", .frame = frame});
    const auto front = desktop().openWindow({.processID = process});
    desktop().settle();
    const auto content = run(
        desktop().screenCapture().shareableContent(DesktopWindows::included, WindowsListed::all));
    ASSERT_TRUE(content && content->has_value());
    const auto window = findWindow(**content, back);
    ASSERT_TRUE(window);
    EXPECT_EQ(window->title, "a title");
    EXPECT_EQ(window->frame, frame);
    EXPECT_EQ(window->windowLayer, 0);
    EXPECT_TRUE(window->isOnScreen);
    ASSERT_TRUE(window->owningApplication);
    EXPECT_EQ(window->owningApplication->processID, process);
    EXPECT_NE(window->owningApplication->applicationName, "");
    const auto place = [&](WindowID sought) {
        return std::ranges::find((*content)->windows, sought, &CapturableWindow::windowID);
    };
    EXPECT_LT(place(front), place(back));
}

TEST_P(ScreenCaptureContract, AHiddenWindowIsContentUnlessOnlyThoseOnScreenAreAskedFor) {
    const auto window = openWindow();
    desktop().hideWindow(window);
    desktop().settle();
    const auto all = run(
        desktop().screenCapture().shareableContent(DesktopWindows::included, WindowsListed::all));
    ASSERT_TRUE(all && all->has_value());
    ASSERT_TRUE(findWindow(**all, window));
    EXPECT_FALSE(findWindow(**all, window)->isOnScreen);
    const auto onScreen = run(desktop().screenCapture().shareableContent(
        DesktopWindows::included, WindowsListed::onScreenOnly));
    ASSERT_TRUE(onScreen && onScreen->has_value());
    EXPECT_FALSE(findWindow(**onScreen, window));
}

TEST_P(ScreenCaptureContract, AnImageOfAWindowShowsTheWindowAloneAlsoWhereItIsCovered) {
    const auto window = openWindow({.frame = {100, 100, 400, 300}, .color = red});
    openWindow({.frame = {50, 50, 600, 500}, .color = green});
    desktop().settle();
    const auto image =
        run(desktop().screenCapture().captureImage(WindowFilter(window), sized(400, 300)));
    ASSERT_TRUE(image && image->has_value());
    ASSERT_EQ((*image)->pixels.size(), 400U * 300U * 4U);
    for (const auto& [x, y] : {std::pair{5, 5}, {200, 150}, {394, 294}})
        EXPECT_PRED2(isNear, colorAt(**image, x, y), red);
}

TEST_P(ScreenCaptureContract, AnImageIsFittedAndTheRestIsBlack) {
    const auto window = openWindow({.frame = {100, 100, 400, 200}, .color = red});
    desktop().settle();
    const auto image =
        run(desktop().screenCapture().captureImage(WindowFilter(window), sized(200, 200)));
    ASSERT_TRUE(image && image->has_value());
    EXPECT_PRED2(isNear, colorAt(**image, 100, 20), Color{});
    EXPECT_PRED2(isNear, colorAt(**image, 100, 180), Color{});
    EXPECT_PRED2(isNear, colorAt(**image, 100, 100), red);
    EXPECT_PRED2(isNear, colorAt(**image, 3, 100), red);
}

TEST_P(ScreenCaptureContract, AnImageOfADisplayShowsWhatLiesBeneathExcludedWindows) {
    openWindow({.frame = {100, 100, 400, 300}, .color = red});
    const auto excluded = openWindow({.frame = {200, 150, 100, 100}, .color = green});
    desktop().settle();
    const auto screen = mainScreen();
    const auto whole = sized(static_cast<std::int64_t>(screen.frame.width),
                             static_cast<std::int64_t>(screen.frame.height));
    const auto with =
        run(desktop().screenCapture().captureImage(DisplayFilter(*screen.displayID, {}), whole));
    const auto without = run(desktop().screenCapture().captureImage(
        DisplayFilter(*screen.displayID, {excluded}), whole));
    ASSERT_TRUE(with && with->has_value() && without && without->has_value());
    EXPECT_PRED2(isNear, colorAt(**with, 250, 200), green);
    EXPECT_PRED2(isNear, colorAt(**without, 250, 200), red);
    EXPECT_PRED2(isNear, colorAt(**without, 120, 120), red);
}

TEST_P(ScreenCaptureContract, WhatHasGoneCannotBeCaptured) {
    const auto window = openWindow();
    desktop().settle();
    const auto gone = *secondScreen().displayID;
    desktop().closeWindow(window);
    desktop().unplugSecondDisplay();
    EXPECT_TRUE(waitUntil([&] { return desktop().screens().screens().size() == 1; }));
    const auto ofWindow =
        run(desktop().screenCapture().captureImage(WindowFilter(window), sized(64, 64)));
    const auto ofDisplay =
        run(desktop().screenCapture().captureImage(DisplayFilter(gone, {}), sized(64, 64)));
    ASSERT_TRUE(ofWindow && ofDisplay);
    EXPECT_FALSE(ofWindow->has_value());
    EXPECT_FALSE(ofDisplay->has_value());
}

TEST_P(ScreenCaptureContract, AnImageOfNoSizeCannotBeMade) {
    const auto window = openWindow();
    desktop().settle();
    const auto image =
        run(desktop().screenCapture().captureImage(WindowFilter(window), sized(0, 100)));
    ASSERT_TRUE(image);
    EXPECT_FALSE(image->has_value());
}

TEST_P(ScreenRecordingAccessContract, IsGrantedExactlyWhenCaptureWorks) {
    auto& access = desktop().screenRecordingAccess();
    const auto content = run(
        desktop().screenCapture().shareableContent(DesktopWindows::included, WindowsListed::all));
    ASSERT_TRUE(content);
    EXPECT_TRUE(access.preflight());
    EXPECT_TRUE(content->has_value());
    EXPECT_TRUE(access.request());
}

TEST_P(ScreenRecordingAccessContract, IsRefusedOnceThePermissionIsWithdrawn) {
    // A desktop without a permission never refuses.
    if (!desktop().hasRecordingPermission()) {
        EXPECT_TRUE(desktop().screenRecordingAccess().request());
        return;
    }
    desktop().withdrawRecordingPermission();
    EXPECT_TRUE(waitUntil([&] { return !desktop().screenRecordingAccess().preflight(); }));
    const auto content = run(
        desktop().screenCapture().shareableContent(DesktopWindows::included, WindowsListed::all));
    ASSERT_TRUE(content);
    EXPECT_FALSE(content->has_value());
}

} // namespace kestrove::contract

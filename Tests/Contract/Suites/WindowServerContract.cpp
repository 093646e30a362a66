#include "Tests/Contract/ContractSuites.h"

#include <algorithm>

namespace kestrove::contract {

namespace {

using Rows = std::vector<WindowDescription>;

std::optional<WindowDescription> findRow(WindowServer& server, WindowID window,
                                         WindowListOptions options = WindowListOptions::all) {
    const auto rows = server.windowList(options).value_or(Rows());
    const auto found =
        std::ranges::find(rows, std::optional(window), &WindowDescription::windowNumber);
    return found == rows.end() ? std::nullopt : std::optional(*found);
}

/// Whether both are listed, the first one in front.
bool isInFrontOf(WindowServer& server, WindowID front, WindowID back) {
    const auto rows = server.windowList(WindowListOptions::all).value_or(Rows());
    const auto frontRow =
        std::ranges::find(rows, std::optional(front), &WindowDescription::windowNumber);
    const auto backRow =
        std::ranges::find(rows, std::optional(back), &WindowDescription::windowNumber);
    return backRow != rows.end() && frontRow < backRow;
}

} // namespace

TEST_P(WindowServerContract, DescribesAWindow) {
    const auto process = desktop().startApplication("painter");
    const Rect frame{120, 90, 410, 310};
    const auto window = desktop().openWindow({.processID = process, .frame = frame});
    auto& server = desktop().windowServer();
    ASSERT_TRUE(waitUntil([&] { return findRow(server, window).has_value(); }));
    const auto row = *findRow(server, window);
    EXPECT_EQ(row.ownerProcessID, process);
    EXPECT_EQ(row.layer.value_or(0), 0);
    EXPECT_EQ(row.alpha.value_or(1), 1);
    EXPECT_EQ(row.bounds, frame);
}

TEST_P(WindowServerContract, ListsFrontToBack) {
    const auto first = openWindow();
    const auto second = openWindow();
    auto& server = desktop().windowServer();
    EXPECT_TRUE(waitUntil([&] { return isInFrontOf(server, second, first); }));
    desktop().raiseWindow(first);
    EXPECT_TRUE(waitUntil([&] { return isInFrontOf(server, first, second); }));
}

TEST_P(WindowServerContract, FollowsAWindowThatMoves) {
    const auto window = openWindow();
    const Rect moved{300, 250, 350, 280};
    desktop().moveWindow(window, moved);
    auto& server = desktop().windowServer();
    EXPECT_TRUE(waitUntil([&] {
        const auto row = findRow(server, window);
        return row && row->bounds == moved;
    }));
}

TEST_P(WindowServerContract, AHiddenWindowIsListedAmongAllAndNotOnScreen) {
    const auto window = openWindow();
    auto& server = desktop().windowServer();
    ASSERT_TRUE(waitUntil(
        [&] { return findRow(server, window, WindowListOptions::onScreenOnly).has_value(); }));
    desktop().hideWindow(window);
    EXPECT_TRUE(
        waitUntil([&] { return !findRow(server, window, WindowListOptions::onScreenOnly); }));
    EXPECT_TRUE(findRow(server, window));
}

TEST_P(WindowServerContract, AClosedWindowIsNotListed) {
    const auto window = openWindow();
    auto& server = desktop().windowServer();
    ASSERT_TRUE(waitUntil([&] { return findRow(server, window).has_value(); }));
    desktop().closeWindow(window);
    EXPECT_TRUE(waitUntil([&] { return !findRow(server, window); }));
}

TEST_P(WindowServerContract, APopupIsNotOnTheLayerOfNormalWindows) {
    const auto popup = openWindow({.kind = WindowKind::popup});
    auto& server = desktop().windowServer();
    ASSERT_TRUE(waitUntil([&] { return findRow(server, popup).has_value(); }));
    EXPECT_NE(findRow(server, popup)->layer.value_or(0), 0);
}

} // namespace kestrove::contract

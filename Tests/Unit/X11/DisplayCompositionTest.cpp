#include "Platform/X11/Capture/DisplayComposition.h"

#include <gtest/gtest.h>

#include <ostream>

namespace kestrove::x11 {

/// For what gtest prints of a difference.
void PrintTo(const Region& region, std::ostream* out) {
    for (const auto& box : region.boxes())
        *out << '(' << box.x1 << ' ' << box.y1 << ' ' << box.x2 << ' ' << box.y2 << ')';
}

namespace {

constexpr xcb_visualid_t plain = 1;
constexpr xcb_visualid_t withAlpha = 2;
/// That RENDER cannot read.
constexpr xcb_visualid_t unreadable = 3;

constexpr xcb_window_t mark = 100;
constexpr xcb_window_t lower = 201;
constexpr xcb_window_t upper = 202;

const Region display(0, 0, 1000, 800);
/// As a frame along the display's upper edge.
const Region edge(0, 0, 1000, 4);

StackedWindow window(xcb_window_t identifier, const xcb_rectangle_t& place,
                     xcb_visualid_t visual = plain) {
    StackedWindow result;
    result.window = identifier;
    result.x = place.x;
    result.y = place.y;
    result.width = place.width;
    result.height = place.height;
    result.isMapped = true;
    result.visual = visual;
    return result;
}

StackedWindow markAtTheEdge() {
    return window(mark, {0, 0, 1000, 4});
}

StackedWindow filling(xcb_window_t identifier, xcb_visualid_t visual = plain) {
    return window(identifier, {0, 0, 1000, 800}, visual);
}

DisplayComposition compose(const std::vector<StackedWindow>& bottomToTop,
                           bool isComposited = false) {
    const PictureFormats formats(std::map<xcb_visualid_t, PictureFormats::Format>{
        {plain, {10, 24, false}}, {withAlpha, {11, 32, true}}});
    return composeDisplay(bottomToTop, {mark}, display, isComposited, formats);
}

std::vector<xcb_window_t> windowsOf(const DisplayComposition& composition) {
    std::vector<xcb_window_t> result;
    result.reserve(composition.windows.size());
    for (const auto& each : composition.windows)
        result.push_back(each.window.window);
    return result;
}

using Windows = std::vector<xcb_window_t>;

TEST(DisplayComposition, IsTheScreenWhereNothingIsLeftOut) {
    const auto seen = compose({filling(lower), window(upper, {10, 10, 50, 50})});
    EXPECT_EQ(seen.direct, display);
    EXPECT_TRUE(seen.covered.isEmpty());
    EXPECT_TRUE(seen.windows.empty());
    EXPECT_TRUE(seen.background.isEmpty());
}

TEST(DisplayComposition, IsMadeOfWhatLiesBeneathALeftOutWindow) {
    const auto seen = compose({window(lower, {0, 0, 300, 300}), window(upper, {200, 0, 300, 300}),
                               window(mark, {100, 100, 300, 100})});
    const Region place(100, 100, 300, 100);
    EXPECT_EQ(seen.covered, place);
    EXPECT_EQ(seen.direct, display - place);
    ASSERT_EQ(windowsOf(seen), (Windows{lower, upper}));
    EXPECT_EQ(seen.windows[0].visible, Region(100, 100, 100, 100));
    EXPECT_EQ(seen.windows[1].visible, Region(200, 100, 200, 100));
    EXPECT_TRUE(seen.background.isEmpty());
    EXPECT_FALSE(seen.isBlended());
}

TEST(DisplayComposition, ShowsTheBareRootWhereNoWindowLiesBeneath) {
    const auto seen = compose({window(lower, {0, 0, 400, 300}), markAtTheEdge()});
    EXPECT_EQ(windowsOf(seen), Windows{lower});
    EXPECT_EQ(seen.background, Region(400, 0, 600, 4));
}

TEST(DisplayComposition, IsTheScreenWhereALeftOutWindowIsHidden) {
    EXPECT_EQ(compose({markAtTheEdge(), window(upper, {0, 0, 1000, 100})}).direct, display);
}

TEST(DisplayComposition, LooksThroughWhatACompositorBlends) {
    auto faint = window(upper, {0, 0, 1000, 100});
    faint.opacity = 0.5;
    const auto seen = compose({filling(lower), markAtTheEdge(), faint}, true);
    EXPECT_EQ(seen.covered, edge);
    EXPECT_EQ(windowsOf(seen), (Windows{lower, upper}));
    EXPECT_TRUE(seen.isBlended());

    const auto glass = compose(
        {filling(lower), markAtTheEdge(), window(upper, {0, 0, 1000, 100}, withAlpha)}, true);
    EXPECT_EQ(windowsOf(glass), (Windows{lower, upper}));
}

// Nothing on such a screen is blended, whatever windows wish for.
TEST(DisplayComposition, TakesWindowsForOpaqueWithoutACompositor) {
    auto faint = window(upper, {0, 0, 1000, 100}, withAlpha);
    faint.opacity = 0.5;
    EXPECT_EQ(compose({filling(lower), markAtTheEdge(), faint}).direct, display);
}

TEST(DisplayComposition, ReadsAWindowThatFillsTheDisplayAndNotTheScreen) {
    const auto seen = compose({filling(lower), markAtTheEdge()});
    EXPECT_TRUE(seen.direct.isEmpty());
    EXPECT_EQ(seen.covered, display);
    ASSERT_EQ(windowsOf(seen), Windows{lower});
    EXPECT_EQ(seen.windows.front().visible, display);
    EXPECT_TRUE(seen.background.isEmpty());
}

// Its effects are on the screen alone.
TEST(DisplayComposition, ReadsTheScreenWhereACompositorPaintsIt) {
    const auto seen = compose({filling(lower), markAtTheEdge()}, true);
    EXPECT_EQ(seen.covered, edge);
    EXPECT_EQ(seen.direct, display - edge);
    ASSERT_EQ(windowsOf(seen), Windows{lower});
    EXPECT_EQ(seen.windows.front().visible, edge);
}

TEST(DisplayComposition, ReadsTheScreenWhereAnotherWindowIsSeen) {
    const auto seen =
        compose({filling(lower), window(upper, {300, 300, 100, 100}), markAtTheEdge()});
    EXPECT_EQ(seen.direct, display - edge);
    EXPECT_EQ(windowsOf(seen), Windows{lower});
}

TEST(DisplayComposition, ReadsTheScreenWhereTheBareRootIsSeen) {
    const auto seen = compose({window(lower, {0, 0, 1000, 700}), markAtTheEdge()});
    EXPECT_EQ(seen.direct, display - edge);
}

TEST(DisplayComposition, ReadsSeveralWindowsThatFillTheDisplayTogether) {
    const auto seen = compose(
        {window(lower, {0, 0, 500, 800}), window(upper, {500, 0, 500, 800}), markAtTheEdge()});
    EXPECT_TRUE(seen.direct.isEmpty());
    EXPECT_EQ(windowsOf(seen), (Windows{lower, upper}));
}

TEST(DisplayComposition, LeavesOutWhatIsNotSeen) {
    auto unmapped = filling(upper);
    unmapped.isMapped = false;
    auto inputOnly = filling(upper);
    inputOnly.isInputOnly = true;
    for (const auto& unseen : {unmapped, inputOnly}) {
        const auto seen = compose({filling(lower), markAtTheEdge(), unseen});
        EXPECT_EQ(seen.covered, display);
        EXPECT_EQ(windowsOf(seen), Windows{lower});
    }
    auto hiddenMark = markAtTheEdge();
    hiddenMark.isMapped = false;
    EXPECT_EQ(compose({filling(lower), hiddenMark}).direct, display);
}

TEST(DisplayComposition, KeepsToShapes) {
    auto ring = filling(mark);
    ring.shape = edge;
    auto hole = filling(upper);
    hole.shape = display - Region(0, 0, 500, 800);
    const auto seen = compose({filling(lower), hole, ring}, true);
    EXPECT_EQ(seen.covered, edge);
    ASSERT_EQ(windowsOf(seen), (Windows{lower, upper}));
    EXPECT_EQ(seen.windows[0].visible, Region(0, 0, 500, 4));
    EXPECT_EQ(seen.windows[1].visible, Region(500, 0, 500, 4));
}

TEST(DisplayComposition, CannotShowWhatCannotBeRead) {
    const auto seen = compose({filling(lower, unreadable), markAtTheEdge()});
    EXPECT_TRUE(seen.windows.empty());
    EXPECT_EQ(seen.background, edge);
    EXPECT_EQ(seen.direct, display - edge);
}

} // namespace
} // namespace kestrove::x11

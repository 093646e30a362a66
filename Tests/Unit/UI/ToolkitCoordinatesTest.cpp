#include "UI/OutputWindow/ToolkitCoordinates.h"

#include <gtest/gtest.h>

#include <vector>

namespace kestrove {
namespace {

using Frames = std::vector<Rect>;

TEST(ToolkitCoordinates, TurnsTheVerticalAxisAroundOnOneScreen) {
    const Frames screens{{0, 0, 1920, 1080}};
    const ToolkitCoordinates coordinates(screens, screens);
    const Rect atTheTop{100, 0, 400, 300};
    EXPECT_EQ(coordinates.toScreen(atTheTop), (Rect{100, 780, 400, 300}));
    EXPECT_EQ(coordinates.toToolkit({100, 780, 400, 300}), atTheTop);
}

TEST(ToolkitCoordinates, PutsTheOriginAtTheMainScreenWhereverThatIs) {
    // The main screen is the right one, and lower by 200 than the left one, in a desktop whose
    // origin is the left one's.
    const Frames screens{{0, 0, 1920, 1080}, {-1440, 380, 1440, 900}};
    const Frames toolkit{{0, 0, 1440, 900}, {1440, 200, 1920, 1080}};
    const ToolkitCoordinates coordinates(screens, toolkit);
    for (std::size_t index = 0; index < screens.size(); ++index) {
        const auto& other = toolkit[toolkit.size() - 1 - index];
        EXPECT_EQ(coordinates.toToolkit(screens[index]), other);
        EXPECT_EQ(coordinates.toScreen(other), screens[index]);
    }
}

TEST(ToolkitCoordinates, KnowsPlacesOutsideEveryScreen) {
    const Frames screens{{0, 0, 1920, 1080}, {-1440, 200, 1440, 900}};
    const Frames toolkit{{1440, 20, 1920, 1080}, {0, 0, 1440, 900}};
    const ToolkitCoordinates coordinates(screens, toolkit);
    const Rect parked{-2240, -450, 800, 450};
    EXPECT_EQ(coordinates.toToolkit(parked), (Rect{-800, 1100, 800, 450}));
    EXPECT_EQ(coordinates.toScreen(coordinates.toToolkit(parked)), parked);
}

TEST(ToolkitCoordinates, StaysCalmWithoutScreens) {
    const Frames one{{0, 0, 100, 100}};
    for (const auto& [screens, toolkit] :
         {std::pair(Frames{}, one), std::pair(one, Frames{}), std::pair(Frames{}, Frames{})}) {
        const ToolkitCoordinates coordinates(screens, toolkit);
        EXPECT_EQ(coordinates.toScreen({10, 20, 30, 40}), (Rect{10, -60, 30, 40}));
        EXPECT_EQ(coordinates.toToolkit({10, -60, 30, 40}), (Rect{10, 20, 30, 40}));
    }
}

} // namespace
} // namespace kestrove

#include "Util/ScreenGeometry.h"

#include <algorithm>

namespace kestrove::ScreenGeometry {

namespace {

template <class Condition>
std::optional<Screen> firstScreen(const std::vector<Screen>& screens, Condition condition) {
    const auto found = std::ranges::find_if(screens, condition);
    return found == screens.end() ? std::nullopt : std::optional(*found);
}

} // namespace

std::optional<Screen> screen(Point at, const std::vector<Screen>& in) {
    return firstScreen(in, [at](const Screen& each) { return each.frame.contains(at); });
}

std::optional<Screen> mainScreen(const std::vector<Screen>& in) {
    return firstScreen(in, [](const Screen& each) { return each.isMain; });
}

std::optional<DisplayID> displayID(const Screen& of) {
    return of.displayID;
}

std::optional<DisplayID> displayIDUnderMouse(Pointer& pointer, Screens& screens) {
    const auto list = screens.screens();
    if (const auto under = screen(pointer.location(), list); under && displayID(*under))
        return displayID(*under);
    const auto main = mainScreen(list);
    return main ? displayID(*main) : std::nullopt;
}

} // namespace kestrove::ScreenGeometry

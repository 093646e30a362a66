// What panels reserve of a monitor.
#include "Platform/X11/Screens/WorkArea.h"
#include "Tests/Fuzzing/Promise.h"

#include <vector>

void kestrove::fuzzing::examine(Input input) {
    const Rect monitor{static_cast<double>(input.half()), static_cast<double>(input.half()),
                       static_cast<double>(input.half() + 1),
                       static_cast<double>(input.half() + 1)};
    const Size root{static_cast<double>(input.half()), static_cast<double>(input.half())};
    std::vector<x11::Strut> struts;
    while (!input.isEmpty()) {
        // In this order: the braces of a list of values are read from left to right.
        struts.push_back({input.word(),
                          input.word(),
                          input.word(),
                          input.word(),
                          {input.word(), input.word()},
                          {input.word(), input.word()},
                          {input.word(), input.word()},
                          {input.word(), input.word()}});
    }
    const auto area = x11::areaWithoutStruts(monitor, root, struts);
    promise(area.width > 0 && area.height > 0, "something is left of a monitor");
    promise(area.minX() >= monitor.minX() && area.maxX() <= monitor.maxX() &&
                area.minY() >= monitor.minY() && area.maxY() <= monitor.maxY(),
            "it lies in the monitor");
}

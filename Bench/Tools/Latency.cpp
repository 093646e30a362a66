// How long a change in a source takes to be seen in another window, measured by a client that has
// nothing to do with the program in between: it paints, and polls one pixel there.
//
// It shows a window, prints "ready", reads "WINDOW X Y" (where the middle of its mark must appear)
// from standard input, and prints the milliseconds of each round.

#include "Bench/Tools/Display.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace kestrove::bench;
using Clock = std::chrono::steady_clock;

constexpr std::array<std::uint32_t, 2> colors{0x101010, 0xf0f0f0};
constexpr std::uint16_t markSide = 64;
/// A change that is not seen by then was lost.
constexpr auto patience = std::chrono::seconds(2);

bool isNearer(std::uint32_t seen, std::size_t wanted) {
    const auto green = seen >> 8 & 0xff; // both colours are greys
    return (green >= 0x80) == (wanted == 1);
}

/// Milliseconds; negative when the change was not seen.
double measure(const Display& display, xcb_window_t source, xcb_gcontext_t pen, std::size_t color,
               xcb_window_t output, int x, int y) {
    const xcb_rectangle_t mark{0, 0, markSide, markSide};
    xcb_change_gc(display.connection(), pen, XCB_GC_FOREGROUND, &colors.at(color));
    xcb_poly_fill_rectangle(display.connection(), source, pen, 1, &mark);
    display.settle();
    const auto begin = Clock::now();
    while (Clock::now() - begin < patience) {
        if (isNearer(display.pixel(output, x, y), color))
            return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
        // Leaves the server to those that are measured; also the resolution of the result.
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return -1;
}

} // namespace

int main(int argumentCount, char** argumentValues) {
    const std::vector<std::string> arguments(argumentValues + 1, argumentValues + argumentCount);
    if (arguments.size() != 5) {
        std::fputs("usage: kestrove-bench-latency X Y WIDTH HEIGHT ROUNDS\n", stderr);
        return 2;
    }
    const auto number = [&](std::size_t index) { return std::atoi(arguments[index].c_str()); };
    const Display display;
    const auto source = display.makeWindow(
        "bench scene",
        {static_cast<std::int16_t>(number(0)), static_cast<std::int16_t>(number(1)),
         static_cast<std::uint16_t>(number(2)), static_cast<std::uint16_t>(number(3))},
        colors[0]);
    const auto pen = display.makePen(colors[0]);
    std::puts("ready");
    std::fflush(stdout);

    unsigned output = 0;
    int x = 0, y = 0;
    if (std::scanf("%u %d %d", &output, &x, &y) != 3)
        return 2;
    std::mt19937 random(1);
    // Off any beat of the mirrors.
    std::uniform_int_distribution pause(60, 140);
    for (int round = 0; round < number(4); ++round) {
        std::this_thread::sleep_for(std::chrono::milliseconds(pause(random)));
        const auto color = static_cast<std::size_t>(round % 2 == 0);
        std::printf("%.3f\n", measure(display, source, pen, color, output, x, y));
        std::fflush(stdout);
    }
    return 0;
}

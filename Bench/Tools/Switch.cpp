// How long the output takes to show another display once the pointer has come to rest there, seen
// by a client that has nothing to do with the program in between: it fills two displays with a
// colour each, moves the pointer to and fro, and polls one pixel of the output.
//
// It shows its windows, prints "ready", reads "WINDOW X Y" (a place in the output) from standard
// input, and prints for each round the milliseconds from the pointer's rest to the first look at
// which the old display was gone, and to the first at which the new one was there; then how often
// the old one was seen again in between.

#include "Bench/Tools/Display.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <xcb/xtest.h>

namespace {

using namespace kestrove::bench;
using Clock = std::chrono::steady_clock;

constexpr std::array<std::uint32_t, 2> colors{0xc02020, 0x2040c0};
constexpr auto patience = std::chrono::seconds(3);
/// Longer than the program rests after a switch, so that each round is one of its own.
constexpr auto calm = std::chrono::milliseconds(500);

struct Watched {
    xcb_window_t output = 0;
    int x = 0;
    int y = 0;
};

void movePointer(const Display& display, const xcb_rectangle_t& place, std::mt19937& random) {
    // Wherever: a motion to the same place would be none.
    std::uniform_int_distribution across(0, place.width / 4), down(0, place.height / 4);
    const auto x = static_cast<std::int16_t>(place.x + place.width / 4 + across(random));
    const auto y = static_cast<std::int16_t>(place.y + place.height / 4 + down(random));
    xcb_test_fake_input(display.connection(), XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME,
                        display.root(), x, y, 0);
    display.settle();
}

void measure(const Display& display, const Watched& watched, std::size_t next) {
    const auto begin = Clock::now();
    const auto elapsed = [&] {
        return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
    };
    double gone = -1;
    int seenAgain = 0;
    while (Clock::now() - begin < patience) {
        const auto seen = display.pixel(watched.output, watched.x, watched.y);
        if (gone < 0 && seen != colors.at(1 - next))
            gone = elapsed();
        else if (gone >= 0 && seen == colors.at(1 - next))
            ++seenAgain;
        if (seen == colors.at(next)) {
            std::printf("%.3f %.3f %d\n", gone, elapsed(), seenAgain);
            return;
        }
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    std::printf("%.3f -1 %d\n", gone, seenAgain);
}

} // namespace

int main(int argumentCount, char** argumentValues) {
    const std::vector<std::string> arguments(argumentValues + 1, argumentValues + argumentCount);
    if (arguments.size() != 9) {
        std::fputs("usage: kestrove-bench-switch X Y WIDTH HEIGHT X Y WIDTH HEIGHT ROUNDS\n",
                   stderr);
        return 2;
    }
    const auto number = [&](std::size_t index) { return std::atoi(arguments[index].c_str()); };
    const Display display;
    std::array<xcb_rectangle_t, 2> places{};
    for (std::size_t index = 0; index < places.size(); ++index) {
        places.at(index) = {static_cast<std::int16_t>(number(4 * index)),
                            static_cast<std::int16_t>(number(4 * index + 1)),
                            static_cast<std::uint16_t>(number(4 * index + 2)),
                            static_cast<std::uint16_t>(number(4 * index + 3))};
        static_cast<void>(display.makeWindow("bench scene", places.at(index), colors.at(index)));
    }
    std::puts("ready");
    std::fflush(stdout);

    Watched watched;
    if (std::scanf("%u %d %d", &watched.output, &watched.x, &watched.y) != 3)
        return 2;
    std::mt19937 random(1);
    for (int round = 0; round < number(8); ++round) {
        std::this_thread::sleep_for(calm);
        const auto next = static_cast<std::size_t>(round % 2 == 0 ? 1 : 0);
        movePointer(display, places.at(next), random);
        measure(display, watched, next);
        std::fflush(stdout);
    }
    return 0;
}

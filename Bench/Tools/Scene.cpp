// Something to mirror: a window in which something moves, still windows, or a moving pointer.
// It prints "ready" when it is seen, and goes on until it is killed.

#include "Bench/Tools/Display.h"
#include "Bench/Tools/Ticker.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <sys/ipc.h>
#include <sys/shm.h>
#include <unistd.h>
#include <xcb/shm.h>
#include <xcb/xtest.h>

namespace {

using namespace kestrove::bench;

constexpr std::uint32_t ground = 0x203040;

void announceReady() {
    std::puts("ready");
    std::fflush(stdout);
}

/// The smallest usual change: a block of 200x200 wanders over a window that stands still.
[[noreturn]] void moveBlock(const Display& display, const xcb_rectangle_t& place, int rate) {
    constexpr std::uint16_t side = 200;
    auto* const connection = display.connection();
    const auto window = display.makeWindow("bench scene", place, ground);
    const auto eraser = display.makePen(ground);
    const auto pen = display.makePen(0xe0a020);
    xcb_rectangle_t block{0, 0, side, side};
    announceReady();
    Ticker ticker(rate);
    for (int step = 0;; ++step) {
        xcb_poly_fill_rectangle(connection, window, eraser, 1, &block);
        block.x = static_cast<std::int16_t>((step * 7) % (place.width - side));
        block.y = static_cast<std::int16_t>((step * 5) % (place.height - side));
        xcb_poly_fill_rectangle(connection, window, pen, 1, &block);
        xcb_flush(connection);
        ticker.wait();
    }
}

/// The largest: every pixel changes, as a video player without acceleration does it.
[[noreturn]] void playVideo(const Display& display, const xcb_rectangle_t& place, int rate) {
    constexpr std::size_t pictures = 8;
    auto* const connection = display.connection();
    const auto window = display.makeWindow("bench scene", place, ground);
    const auto pen = display.makePen(0);
    const std::size_t pixels = std::size_t{place.width} * place.height;
    const int shared = shmget(IPC_PRIVATE, pictures * pixels * 4, IPC_CREAT | 0600);
    auto* const memory = static_cast<std::uint32_t*>(shmat(shared, nullptr, 0));
    const auto segment = xcb_generate_id(connection);
    xcb_shm_attach(connection, segment, static_cast<std::uint32_t>(shared), 1);
    display.settle();
    shmctl(shared, IPC_RMID, nullptr); // goes when both have let go of it
    const std::span all(memory, pictures * pixels);
    for (std::size_t index = 0; index < all.size(); ++index) {
        const auto picture = index / pixels, x = index % place.width;
        const auto y = index % pixels / place.width;
        all[index] = static_cast<std::uint32_t>(((x + picture * 31) & 0xff) << 16 |
                                                ((y + picture * 17) & 0xff) << 8 | (x * y & 0xff));
    }
    announceReady();
    Ticker ticker(rate);
    for (std::size_t step = 0;; ++step) {
        const auto offset = static_cast<std::uint32_t>(step % pictures * pixels * 4);
        xcb_shm_put_image(connection, window, pen, place.width, place.height, 0, 0, place.width,
                          place.height, 0, 0, display.screen().root_depth,
                          XCB_IMAGE_FORMAT_Z_PIXMAP, 0, segment, offset);
        xcb_flush(connection);
        ticker.wait();
    }
}

/// Still windows all over the place, and one in which a block moves, so that there is work to do.
[[noreturn]] void moveBlockAmongWindows(const Display& display, const xcb_rectangle_t& place,
                                        int rate, int count) {
    for (int index = 0; index < count; ++index) {
        const xcb_rectangle_t window{
            static_cast<std::int16_t>(place.x + (index * 37) % (place.width - 300)),
            static_cast<std::int16_t>(place.y + (index * 23) % (place.height - 240)), 280, 200};
        static_cast<void>(display.makeWindow("bench window " + std::to_string(index), window,
                                             static_cast<std::uint32_t>(index * 40503) & 0xffffff));
    }
    moveBlock(display, {place.x, static_cast<std::int16_t>(place.y + 40), 800, 600}, rate);
}

[[noreturn]] void movePointer(const Display& display, const xcb_rectangle_t& place, int rate) {
    auto* const connection = display.connection();
    announceReady();
    Ticker ticker(rate);
    for (int step = 0;; ++step) {
        const auto x = static_cast<std::int16_t>(place.x + (step * 7) % place.width);
        const auto y = static_cast<std::int16_t>(place.y + (step * 5) % place.height);
        xcb_test_fake_input(connection, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, display.root(), x,
                            y, 0);
        xcb_flush(connection);
        ticker.wait();
    }
}

} // namespace

int main(int argumentCount, char** argumentValues) {
    const std::vector<std::string> arguments(argumentValues + 1, argumentValues + argumentCount);
    if (arguments.size() < 6) {
        std::fputs("usage: kestrove-bench-scene block|video|windows|pointer X Y WIDTH HEIGHT RATE "
                   "[COUNT]\n",
                   stderr);
        return 2;
    }
    const auto number = [&](std::size_t index) { return std::atoi(arguments[index].c_str()); };
    const xcb_rectangle_t place{
        static_cast<std::int16_t>(number(1)), static_cast<std::int16_t>(number(2)),
        static_cast<std::uint16_t>(number(3)), static_cast<std::uint16_t>(number(4))};
    const int rate = number(5);
    const Display display;
    if (arguments[0] == "block")
        moveBlock(display, place, rate);
    if (arguments[0] == "video")
        playVideo(display, place, rate);
    if (arguments[0] == "windows" && arguments.size() > 6)
        moveBlockAmongWindows(display, place, rate, number(6));
    if (arguments[0] == "pointer")
        movePointer(display, place, rate);
    std::fputs("no such scene\n", stderr);
    return 2;
}

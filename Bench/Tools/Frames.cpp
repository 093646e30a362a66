// How often the picture in a window changes: each burst of drawing that comes while the server is
// looked at again and again counts once. Prints the pictures a second.

#include "Bench/Tools/Display.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <poll.h>
#include <xcb/damage.h>

int main(int argumentCount, char** argumentValues) {
    using Clock = std::chrono::steady_clock;
    if (argumentCount != 3) {
        std::fputs("usage: kestrove-bench-frames WINDOW SECONDS\n", stderr);
        return 2;
    }
    const kestrove::bench::Display display;
    auto* const connection = display.connection();
    const auto window = static_cast<xcb_window_t>(std::strtoul(argumentValues[1], nullptr, 0));
    const auto* const extension = xcb_get_extension_data(connection, &xcb_damage_id);
    std::free(xcb_damage_query_version_reply(connection, xcb_damage_query_version(connection, 1, 1),
                                             nullptr));
    const auto damage = xcb_generate_id(connection);
    xcb_damage_create(connection, damage, window, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    display.settle();

    // What belongs to one picture is drawn within this time.
    constexpr auto burst = std::chrono::milliseconds(3);
    const auto seconds = std::chrono::duration<double>(std::atof(argumentValues[2]));
    const auto begin = Clock::now();
    auto last = begin - burst;
    int pictures = 0;
    while (Clock::now() - begin < seconds) {
        pollfd waiting{xcb_get_file_descriptor(connection), POLLIN, 0};
        poll(&waiting, 1, 10);
        while (auto* const event = xcb_poll_for_event(connection)) {
            const bool isDamage =
                (event->response_type & 0x7f) == extension->first_event + XCB_DAMAGE_NOTIFY;
            std::free(event);
            if (!isDamage)
                continue;
            const auto now = Clock::now();
            pictures += now - last >= burst ? 1 : 0;
            last = now;
            xcb_damage_subtract(connection, damage, XCB_NONE, XCB_NONE);
            xcb_flush(connection);
        }
    }
    std::printf("%.1f\n", pictures / seconds.count());
    return 0;
}

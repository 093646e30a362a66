// A tray: starts a program and prints how many milliseconds it takes until its icon is in the tray.
// The program goes on until the standard input ends.

#include "Bench/Tools/Display.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

xcb_atom_t atom(xcb_connection_t* connection, const char* name) {
    auto* const reply = xcb_intern_atom_reply(
        connection,
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name),
        nullptr);
    const auto result = reply->atom;
    std::free(reply);
    return result;
}

/// Waits for the icon that asks to be taken in, takes it in, and waits until it is seen.
bool takeIconIn(const kestrove::bench::Display& display, xcb_window_t tray, int milliseconds) {
    using Clock = std::chrono::steady_clock;
    auto* const connection = display.connection();
    const auto opcode = atom(connection, "_NET_SYSTEM_TRAY_OPCODE");
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    xcb_window_t icon = XCB_WINDOW_NONE;
    while (Clock::now() < end) {
        auto* const event = xcb_poll_for_event(connection);
        if (event == nullptr) {
            pollfd waiting{xcb_get_file_descriptor(connection), POLLIN, 0};
            poll(&waiting, 1, 100);
            continue;
        }
        const int type = event->response_type & 0x7f;
        const auto& message = *reinterpret_cast<const xcb_client_message_event_t*>(event);
        const auto& mapped = *reinterpret_cast<const xcb_map_notify_event_t*>(event);
        constexpr std::uint32_t docks = 0;
        if (type == XCB_CLIENT_MESSAGE && message.type == opcode &&
            message.data.data32[1] == docks) {
            icon = message.data.data32[2];
            xcb_reparent_window(connection, icon, tray, 0, 0);
            xcb_map_window(connection, icon);
            xcb_flush(connection);
        }
        const bool isSeen =
            type == XCB_MAP_NOTIFY && icon != XCB_WINDOW_NONE && mapped.window == icon;
        std::free(event);
        if (isSeen)
            return true;
    }
    return false;
}

} // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount < 2) {
        std::fputs("usage: kestrove-bench-traystart PROGRAM [ARGUMENT...]\n", stderr);
        return 2;
    }
    const kestrove::bench::Display display;
    auto* const connection = display.connection();
    const auto tray = display.makeWindow("bench tray", {40, 40, 32, 32}, 0x808080);
    const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection, tray, XCB_CW_EVENT_MASK, &events);
    xcb_set_selection_owner(connection, tray, atom(connection, "_NET_SYSTEM_TRAY_S0"),
                            XCB_CURRENT_TIME);
    display.settle();

    constexpr int patience = 20000;
    const auto begin = std::chrono::steady_clock::now();
    const auto program = fork();
    if (program == 0) {
        execv(arguments[1], arguments + 1);
        _exit(127);
    }
    const bool isIn = takeIconIn(display, tray, patience);
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - begin;
    if (isIn)
        std::printf("%d %.1f\n", program, taken.count());
    else
        std::printf("%d never\n", program);
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    kill(program, SIGTERM);
    waitpid(program, nullptr, 0);
    return isIn ? 0 : 1;
}

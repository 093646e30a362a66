#include "Tests/X11/Application/Parking/WindowGrab.h"

#include "Tests/Support/Processes/Waiting.h"

#include <array>
#include <fcntl.h>
#include <fmt/core.h>
#include <unistd.h>

namespace kestrove::test {

WindowGrab::WindowGrab(XDesktop& desktop, xcb_window_t window, Spot spot)
    : m_desktop(desktop)
    , m_window(window)
    , m_spot(spot) {
    begin();
}

WindowGrab::~WindowGrab() {
    end();
}

void WindowGrab::begin() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        giveUp("no pipe");
    m_frames = ends[0];
    ::fcntl(m_frames, F_SETFL, O_NONBLOCK);
    m_program = std::make_unique<ChildProcess>(ChildProcess::Options{
        .command = {"ffmpeg",
                    "-nostdin",
                    "-loglevel",
                    "error",
                    "-f",
                    "x11grab",
                    "-draw_mouse",
                    "0",
                    "-framerate",
                    "10",
                    "-window_id",
                    fmt::format("{}", m_window),
                    "-i",
                    m_desktop.displayName(),
                    "-vf",
                    fmt::format("crop=1:1:in_w*{}:in_h*{}:exact=1", m_spot.x, m_spot.y),
                    "-pix_fmt",
                    "rgb24",
                    "-f",
                    "rawvideo",
                    fmt::format("pipe:{}", ends[1])},
        .environment = m_desktop.environment(),
        .log = m_desktop.folder() / "ffmpeg.log",
        .keptDescriptors = {ends[1]}});
    ::close(ends[1]);
}

void WindowGrab::end() {
    m_program.reset();
    ::close(m_frames);
}

bool WindowGrab::sees(Color color) {
    // What was captured before may still be in the pipe, and shows what was before.
    return waitUntil([&] {
        readFrames();
        if (m_last != color && !m_program->isRunning()) {
            end();
            begin();
        }
        return m_last == color;
    });
}

void WindowGrab::readFrames() {
    std::array<std::uint8_t, 3> pixel{};
    while (::read(m_frames, pixel.data(), pixel.size()) == static_cast<ssize_t>(pixel.size()))
        m_last = 0xff000000U | static_cast<Color>(pixel[0]) << 16U |
                 static_cast<Color>(pixel[1]) << 8U | pixel[2];
}

} // namespace kestrove::test

#pragma once

#include "Platform/X11/Connection.h"
#include "Platform/X11/Screens/MonitorLayout.h"
#include "Tests/Support/PollMainLoop/PollMainLoop.h"
#include "Tests/Support/TestWindow/TestWindow.h"
#include "Tests/Support/XServer/XDesktop.h"

#include <gtest/gtest.h>
#include <memory>

namespace kestrove::x11 {

/// A desktop of the test's own, and our connection to it.
class X11Fixture : public testing::Test {
protected:
    explicit X11Fixture(test::WindowManager manager = test::WindowManager::none)
        : desktop(test::XDesktop::Options{.windowManager = manager})
        , connection(open()) {}

    /// Takes in everything that the server has to tell up to now.
    void settle() {
        (void)connection->reply(xcb_get_input_focus_reply, xcb_get_input_focus(connection->get()));
        loop.runUntilIdle();
    }

    /// Ends our connection alone, as the server does when it is fed up with a client.
    void loseConnection() {
        const auto resource = connection->generateIdentifier();
        xcb_create_pixmap(connection->get(), 1, resource, connection->root(), 1, 1);
        settle();
        xcb_kill_client(desktop.connection(), resource);
        xcb_flush(desktop.connection());
        ASSERT_TRUE(loop.spinUntil([&] { return !connection->isOpen(); }));
    }

    std::unique_ptr<test::TestWindow> makeWindow(const test::TestWindow::Options& options) {
        return std::make_unique<test::TestWindow>(desktop.displayName(), options);
    }

    test::XDesktop desktop;
    PollMainLoop loop;
    std::unique_ptr<Connection> connection;

private:
    std::unique_ptr<Connection> open() {
        auto opened = Connection::open(loop, loop, desktop.displayName());
        if (!opened) {
            ADD_FAILURE() << opened.error().description;
            std::abort();
        }
        return std::move(*opened);
    }
};

} // namespace kestrove::x11

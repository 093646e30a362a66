#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/KeyPresses.h"
#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Application/TrayFixture.h"

#include <csignal>
#include <cstdlib>
#include <map>
#include <ostream>
#include <set>
#include <string>
#include <utility>

#include <fmt/format.h>
#include <xcb/composite.h>
#include <xcb/res.h>

namespace kestrove::test {
namespace {

/// What a server keeps for its clients: how many of each kind.
using Resources = std::map<std::string, std::uint32_t>;

std::string text(const Resources& resources) {
    std::string result;
    for (const auto& [kind, count] : resources)
        result += fmt::format("{}: {}, ", kind, count);
    return result;
}

/// A desktop with a tray on one display; the other one is shared.
class LeftBehind : public TrayFixture {
protected:
    LeftBehind() { startTray(); }

    [[nodiscard]] std::string nameOf(xcb_atom_t atom) const {
        const Reply reply(xcb_get_atom_name_reply(
            desktop.connection(), xcb_get_atom_name(desktop.connection(), atom), nullptr));
        return reply ? std::string(xcb_get_atom_name_name(reply.get()), reply->name_len) : "";
    }

    /// Of all clients but the one that asks.
    [[nodiscard]] Resources resources() const {
        auto* const connection = desktop.connection();
        Resources sums;
        const Reply clients(
            xcb_res_query_clients_reply(connection, xcb_res_query_clients(connection), nullptr));
        const auto ours = xcb_get_setup(connection)->resource_id_base;
        for (auto each = xcb_res_query_clients_clients_iterator(clients.get()); each.rem > 0;
             xcb_res_client_next(&each)) {
            if (each.data->resource_base == ours)
                continue;
            ++sums["client"];
            const Reply kinds(xcb_res_query_client_resources_reply(
                connection, xcb_res_query_client_resources(connection, each.data->resource_base),
                nullptr));
            if (!kinds) // it has just gone
                continue;
            for (auto kind = xcb_res_query_client_resources_types_iterator(kinds.get());
                 kind.rem > 0; xcb_res_type_next(&kind))
                sums[nameOf(kind.data->resource_type)] += kind.data->count;
        }
        return sums;
    }

    /// When the others have worked through what they were told.
    [[nodiscard]] Resources settledResources() const {
        Resources last;
        int same = 0;
        EXPECT_TRUE(waitUntil([&] {
            auto now = resources();
            same = now == last ? same + 1 : 0;
            last = std::move(now);
            return same == 50;
        }));
        return last;
    }

    [[nodiscard]] std::set<std::string> rootProperties() const {
        const Reply reply(xcb_list_properties_reply(
            desktop.connection(), xcb_list_properties(desktop.connection(), desktop.root()),
            nullptr));
        std::set<std::string> names;
        for (int each = 0; reply && each < reply->atoms_len; ++each)
            names.insert(nameOf(xcb_list_properties_atoms(reply.get())[each]));
        return names;
    }

    /// Whether somebody else can have Control+Super+S.
    [[nodiscard]] bool isShortcutFree() const {
        auto* const connection = desktop.connection();
        auto* const error = xcb_request_check(
            connection, xcb_grab_key_checked(connection, 0, desktop.root(),
                                             XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_4, ServerKey::s,
                                             XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
        const bool isFree = error == nullptr;
        std::free(error);
        xcb_ungrab_key(connection, XCB_GRAB_ANY, desktop.root(), XCB_MOD_MASK_ANY);
        sync(connection);
        return isFree;
    }

    /// Whether nobody else draws the children of the root by hand.
    [[nodiscard]] bool canRedirect() const {
        auto* const connection = desktop.connection();
        auto* const error = xcb_request_check(
            connection, xcb_composite_redirect_subwindows_checked(connection, desktop.root(),
                                                                  XCB_COMPOSITE_REDIRECT_MANUAL));
        const bool isFree = error == nullptr;
        std::free(error);
        if (isFree)
            xcb_composite_unredirect_subwindows(connection, desktop.root(),
                                                XCB_COMPOSITE_REDIRECT_MANUAL);
        sync(connection);
        return isFree;
    }

    void startOrStop() {
        pressTogether(desktop.connection(), {ServerKey::control, ServerKey::super, ServerKey::s});
    }
};

/// How the program is told to end.
struct Ending {
    std::string name;
    int signal = 0; ///< 0: from its menu
};

void PrintTo(const Ending& ending, std::ostream* out) {
    *out << ending.name;
}

class AfterTheEnd : public LeftBehind, public testing::WithParamInterface<Ending> {
protected:
    /// Shares, opens the panel and the picker, takes the window off the desktop, and ends.
    void runOnce() {
        start("kestrove.autoStart=true\n" + onlyDisplay("RIGHT"));
        ASSERT_TRUE(shows(right, "the right display"));
        ASSERT_FALSE(isShortcutFree());
        ASSERT_TRUE(clickIcon(1)) << program().logTail();
        server.press(Key::escape);
        ASSERT_TRUE(waitUntil([this] { return !isMenuOpen(); }));
        pressTogether(desktop.connection(), {ServerKey::control, ServerKey::super, ServerKey::p});
        ASSERT_TRUE(waitUntil([this] { return find("kestrove — ソース選択") != XCB_WINDOW_NONE; }));
        pressTogether(desktop.connection(), {ServerKey::control, ServerKey::super, ServerKey::h});
        ASSERT_TRUE(hasSaved("kestrove.hideOutputWindow=true"));
        end();
    }

private:
    void end() {
        if (GetParam().signal != 0) {
            program().signal(GetParam().signal);
        } else {
            ASSERT_TRUE(clickIcon(3)) << program().logTail();
            chooseFromMenuEnd(1);
        }
        if (GetParam().signal == SIGKILL)
            ASSERT_TRUE(program().waitForExit(patience));
        else
            ASSERT_TRUE(endsWith(0));
    }
};

TEST_P(AfterTheEnd, TheServerIsAsItWas) {
    // Window manager and tray keep something for the first window of their life.
    ASSERT_NO_FATAL_FAILURE(runOnce());
    const auto before = settledResources();
    const auto properties = rootProperties();
    ASSERT_NO_FATAL_FAILURE(runOnce());
    EXPECT_TRUE(waitUntil([&] { return resources() == before; }))
        << "before " << text(before) << "\nafter " << text(resources());
    EXPECT_EQ(rootProperties(), properties);
    EXPECT_TRUE(isShortcutFree());
    EXPECT_TRUE(canRedirect());
}

INSTANTIATE_TEST_SUITE_P(By, AfterTheEnd,
                         testing::Values(Ending{"Menu"}, Ending{"Termination", SIGTERM},
                                         Ending{"EndOfTheSession", SIGHUP},
                                         Ending{"Killing", SIGKILL}),
                         [](const auto& tested) { return tested.param.name; });

TEST_F(LeftBehind, StoppingGivesBackWhatSharingTook) {
    start("kestrove.autoStart=true\n" + onlyDisplay("RIGHT"));
    ASSERT_TRUE(shows(right, "the right display"));
    startOrStop();
    ASSERT_TRUE(showsPlaceholder("stopped"));
    // Every program keeps something for the first icon, line and window of its life.
    startOrStop();
    ASSERT_TRUE(shows(right, "started"));
    startOrStop();
    ASSERT_TRUE(showsPlaceholder("stopped"));
    const auto stopped = settledResources();
    for (int each = 0; each < 3; ++each) {
        startOrStop();
        ASSERT_TRUE(shows(right, "started"));
        EXPECT_NE(resources(), stopped);
        startOrStop();
        ASSERT_TRUE(showsPlaceholder("stopped"));
        EXPECT_TRUE(waitUntil([&] { return resources() == stopped; }))
            << "first " << text(stopped) << "\nnow " << text(resources());
    }
}

} // namespace
} // namespace kestrove::test

#include "Platform/X11/Screens/MonitorLayout.h"
#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Desktop/X11Fixture.h"

#include <array>
#include <fmt/format.h>
#include <xcb/randr.h>

namespace kestrove::x11 {
namespace {

std::string describe(const Monitor& monitor) {
    const auto& [x, y, width, height] = monitor.rectangle;
    return fmt::format("{} {}x{}+{}+{}{}", monitor.name, width, height, x, y,
                       monitor.isMain ? " main" : "");
}

class MonitorLayoutTest : public X11Fixture {
protected:
    std::vector<std::string> described() const {
        std::vector<std::string> lines;
        for (const auto& monitor : layout.monitors())
            lines.push_back(describe(monitor));
        return lines;
    }
    DisplayID idOf(const std::string& name) const {
        for (const auto& monitor : layout.monitors()) {
            if (monitor.name == name)
                return monitor.id;
        }
        return 0;
    }

    /// Gives the server's real output an EDID, as plugging in another display does.
    void plugInDisplayWith(const std::string& edid) {
        auto* const server = desktop.connection();
        const test::Reply resources(xcb_randr_get_screen_resources_current_reply(
            server, xcb_randr_get_screen_resources_current(server, desktop.root()), nullptr));
        const auto output = *xcb_randr_get_screen_resources_current_outputs(resources.get());
        xcb_randr_change_output_property(server, output, desktop.server().atom("EDID"),
                                         XCB_ATOM_INTEGER, 8, XCB_PROP_MODE_REPLACE,
                                         static_cast<std::uint32_t>(edid.size()), edid.data());
        xcb_flush(server);
    }
    static std::string edidNaming(std::string name) {
        std::string edid(128, '\0');
        edid.replace(0, 8, std::string("\0\xFF\xFF\xFF\xFF\xFF\xFF\0", 8));
        name.resize(13, ' ');
        edid.replace(72, 18, std::string("\0\0\0\xFC\0", 5) + name);
        return edid;
    }

    MonitorLayout layout{*connection};
};

using Lines = std::vector<std::string>;

TEST_F(MonitorLayoutTest, ListsTheMonitors) {
    EXPECT_EQ(described(), (Lines{"LEFT 1280x800+0+0 main", "RIGHT 1280x800+1280+0"}));
    EXPECT_EQ(idOf("RIGHT"), displayIdentifier("RIGHT"));
    EXPECT_EQ(layout.find(idOf("RIGHT"))->name, "RIGHT");
    EXPECT_EQ(layout.find(1), nullptr);
}

TEST_F(MonitorLayoutTest, GivesADisplayTheSameIdentifierAfterARestart) {
    auto again = Connection::open(loop, loop, desktop.displayName());
    ASSERT_TRUE(again);
    const auto monitors = readMonitors(**again);
    ASSERT_EQ(monitors.size(), 2U);
    EXPECT_EQ(monitors[0].id, idOf("LEFT"));
    EXPECT_EQ(monitors[1].id, idOf("RIGHT"));
}

TEST_F(MonitorLayoutTest, FollowsDisplaysThatArePluggedAndPulled) {
    int changes = 0;
    const auto subscription = layout.changed.subscribe([&] { ++changes; });
    desktop.server().setMonitor({"BELOW", {0, 400, 640, 400}});
    EXPECT_TRUE(loop.spinUntil([&] { return changes == 1; }));
    EXPECT_EQ(described(),
              (Lines{"LEFT 1280x800+0+0 main", "RIGHT 1280x800+1280+0", "BELOW 640x400+0+400"}));
    desktop.server().removeMonitor("BELOW");
    EXPECT_TRUE(loop.spinUntil([&] { return layout.monitors().size() == 2; }));
    EXPECT_EQ(changes, 2);
}

TEST_F(MonitorLayoutTest, KeepsTheIdentifierOfADisplayThatMovesOrOutlivesAnother) {
    const auto id = idOf("RIGHT");
    desktop.server().setMonitor({"RIGHT", {1280, 0, 640, 480}});
    EXPECT_TRUE(loop.spinUntil([&] { return layout.monitors().back().rectangle.width == 640; }));
    EXPECT_EQ(idOf("RIGHT"), id);
    desktop.server().removeMonitor("LEFT");
    EXPECT_TRUE(loop.spinUntil([&] { return layout.monitors().size() == 1; }));
    EXPECT_EQ(described(), (Lines{"RIGHT 640x480+1280+0 main"}));
    EXPECT_EQ(idOf("RIGHT"), id);
}

TEST_F(MonitorLayoutTest, PutsThePrimaryMonitorFirst) {
    const auto xrandr =
        desktop.start({"xrandr", "--setmonitor", "*BELOW", "640/169x400/106+0+400", "none"});
    EXPECT_TRUE(loop.spinUntil([&] { return layout.monitors().size() == 3; }));
    EXPECT_EQ(described(),
              (Lines{"BELOW 640x400+0+400 main", "LEFT 1280x800+0+0", "RIGHT 1280x800+1280+0"}));
}

TEST_F(MonitorLayoutTest, NamesADisplayByItsEdidAndTellsItFromAnother) {
    const auto bare = idOf("LEFT");
    int changes = 0;
    const auto subscription = layout.changed.subscribe([&] { ++changes; });
    plugInDisplayWith(edidNaming("DELL U2720Q\n"));
    EXPECT_TRUE(loop.spinUntil([&] { return changes == 1; }));
    EXPECT_EQ(described().front(), "DELL U2720Q 1280x800+0+0 main");
    const auto dell = idOf("DELL U2720Q");
    EXPECT_NE(dell, bare);
    plugInDisplayWith(edidNaming("EV2785\n"));
    EXPECT_TRUE(loop.spinUntil([&] { return changes == 2; }));
    EXPECT_NE(idOf("EV2785"), dell);
    plugInDisplayWith(edidNaming("DELL U2720Q\n"));
    EXPECT_TRUE(loop.spinUntil([&] { return changes == 3; }));
    EXPECT_EQ(idOf("DELL U2720Q"), dell);
}

TEST_F(MonitorLayoutTest, TellsDisplaysOfOneNameApart) {
    desktop.server().setMonitor({"EV2785", {1280, 0, 640, 480}});
    plugInDisplayWith(edidNaming("EV2785\n"));
    EXPECT_TRUE(loop.spinUntil([&] { return idOf("EV2785 (LEFT)") != 0; }));
    EXPECT_EQ(described(), (Lines{"EV2785 (LEFT) 1280x800+0+0 main", "RIGHT 1280x800+1280+0",
                                  "EV2785 640x480+1280+0"}));
}

TEST_F(MonitorLayoutTest, MovesIdentifiersApartThatWouldBeEqual) {
    // Two words with one and the same hash.
    ASSERT_EQ(displayIdentifier("costarring"), displayIdentifier("liquid"));
    desktop.server().setMonitor({"liquid", {0, 0, 640, 480}});
    desktop.server().setMonitor({"costarring", {640, 0, 640, 480}});
    EXPECT_TRUE(loop.spinUntil([&] { return layout.monitors().size() == 4; }));
    EXPECT_EQ(idOf("costarring"), displayIdentifier("costarring"));
    EXPECT_EQ(idOf("liquid"), displayIdentifier("costarring") + 1);
}

TEST_F(MonitorLayoutTest, IsEmptyWhileTheConnectionIsLost) {
    const auto before = described();
    int changes = 0;
    const auto subscription = layout.changed.subscribe([&] { ++changes; });
    loseConnection();
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(layout.monitors().empty());
    ASSERT_TRUE(connection->reopen());
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(described(), before);
    desktop.server().removeMonitor("RIGHT");
    EXPECT_TRUE(loop.spinUntil([&] { return layout.monitors().size() == 1; }));
}

} // namespace
} // namespace kestrove::x11

#include "Platform/X11/Connection.h"

#include "Tests/X11/Desktop/X11Fixture.h"

#include <vector>

namespace kestrove::x11 {
namespace {

class ConnectionTest : public X11Fixture {
protected:
    std::unique_ptr<test::TestWindow> window = makeWindow({});
};

TEST_F(ConnectionTest, TellsOfEventsThatCameWhileAReplyWasLookedFor) {
    connection->selectEvents(window->id(), XCB_EVENT_MASK_PROPERTY_CHANGE);
    settle();
    // Nobody else is answered from now on, but told of events.
    xcb_grab_server(window->connection());
    window->setTitle("first");
    int told = 0;
    const auto events = connection->events.subscribe([&](const xcb_generic_event_t& event) {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (event.response_type == XCB_PROPERTY_NOTIFY && change.window == window->id() &&
            change.atom == XCB_ATOM_WM_NAME)
            ++told;
    });
    const auto drained = connection->eventsDrained.subscribe([&, isFirst = true]() mutable {
        if (std::exchange(isFirst, false))
            window->setTitle("second");
    });
    bool isAnswered = false;
    connection->onReply(xcb_get_input_focus(connection->get()),
                        [&](const Reply<void>& /*reply*/) { isAnswered = true; });
    EXPECT_TRUE(loop.spinUntil([&] { return told == 2; }));
    EXPECT_FALSE(isAnswered);
    xcb_ungrab_server(window->connection());
    xcb_flush(window->connection());
    EXPECT_TRUE(loop.spinUntil([&] { return isAnswered; }));
}

TEST_F(ConnectionTest, TellsOnceEverybodyHasActedOnTheEvents) {
    connection->selectEvents(window->id(), XCB_EVENT_MASK_PROPERTY_CHANGE);
    settle();
    std::string order;
    const auto acted = connection->eventsActedOn.subscribe([&] { order += '3'; });
    const auto drained = connection->eventsDrained.subscribe([&] { order += '2'; });
    const auto events = connection->events.subscribe([&](const auto& /*event*/) { order += '1'; });
    // Both lie there before they are looked for.
    for (const auto* title : {"one", "two"})
        window->setTitle(title);
    xcb_flush(window->connection());
    EXPECT_TRUE(loop.spinUntil([&] { return order.contains('3'); }));
    EXPECT_EQ(order.substr(order.find_last_of('1')), "123");
}

TEST_F(ConnectionTest, TellsDamageToWhomItBelongsAndToNobodyElse) {
    const auto damage = connection->generateIdentifier();
    const auto other = connection->generateIdentifier();
    for (const auto each : {damage, other})
        xcb_damage_create(connection->get(), each, window->id(),
                          XCB_DAMAGE_REPORT_LEVEL_DELTA_RECTANGLES);
    std::vector<xcb_rectangle_t> told;
    int toldOfOther = 0;
    int toldToAll = 0;
    auto own = connection->onDamage(
        damage, [&](const xcb_rectangle_t& area, std::uint32_t) { told.push_back(area); });
    const auto others =
        connection->onDamage(other, [&](const xcb_rectangle_t&, std::uint32_t) { ++toldOfOther; });
    const auto type = connection->extensions().damageFirstEvent + XCB_DAMAGE_NOTIFY;
    const auto events = connection->events.subscribe([&](const xcb_generic_event_t& event) {
        toldToAll += (event.response_type & 0x7F) == type ? 1 : 0;
    });
    settle();
    // New, each tells that all of the window has changed.
    for (const auto each : {damage, other})
        xcb_damage_subtract(connection->get(), each, XCB_NONE, XCB_NONE);
    settle();
    told.clear();
    toldOfOther = 0;
    window->fillRectangle({20, 30, 40, 10}, 0xff00ff00);
    EXPECT_TRUE(loop.spinUntil([&] { return !told.empty() && toldOfOther > 0; }));
    ASSERT_EQ(told.size(), 1);
    EXPECT_EQ(told.front().x, 20);
    EXPECT_EQ(told.front().y, 30);
    EXPECT_EQ(told.front().width, 40);
    EXPECT_EQ(told.front().height, 10);
    EXPECT_EQ(toldOfOther, 1);

    own.cancel();
    window->fillRectangle({100, 30, 40, 10}, 0xff00ff00);
    EXPECT_TRUE(loop.spinUntil([&] { return toldOfOther == 2; }));
    EXPECT_EQ(told.size(), 1);
    EXPECT_EQ(toldToAll, 0);
}

} // namespace
} // namespace kestrove::x11

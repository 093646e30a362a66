#include "Platform/X11/Connection.h"

#include "Tests/X11/Desktop/X11Fixture.h"

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

} // namespace
} // namespace kestrove::x11

#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Sources/SourcesFixture.h"

#include <algorithm>
#include <span>

namespace kestrove::test {
namespace {

class OutputOnTop : public SourcesFixture {
protected:
    [[nodiscard]] WindowID output() { return app->outputWindow().windowID().value_or(0); }
    [[nodiscard]] static bool isAbove(xcb_window_t window) {
        const Reply states(xcb_get_property_reply(
            desktop().connection(),
            xcb_get_property(desktop().connection(), 0, window, server().atom("_NET_WM_STATE"),
                             XCB_ATOM_ATOM, 0, 100),
            nullptr));
        if (!states)
            return false;
        const std::span atoms(static_cast<const xcb_atom_t*>(xcb_get_property_value(states.get())),
                              states->value_len);
        return std::ranges::find(atoms, server().atom("_NET_WM_STATE_ABOVE")) != atoms.end();
    }
};

TEST_F(OutputOnTop, IsTheSameWindowWhicheverTheUserWants) {
    const auto window = output();
    start();
    ASSERT_TRUE(shows(leftColor));
    for (const bool wanted : {false, true, false}) {
        settings().alwaysOnTop.set(wanted);
        EXPECT_TRUE(loop.runUntil([&] { return isAbove(window) == wanted; }));
        EXPECT_EQ(output(), window);
    }
    settings().alwaysOnTop.set(true);
    EXPECT_TRUE(shows(leftColor));
}

} // namespace
} // namespace kestrove::test

#include "Platform/X11/Screens/WorkArea.h"
#include "Platform/X11/WindowIdentity/WindowIdentity.h"
#include "Tests/Fuzzing/Promise.h"
#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Desktop/X11Fixture.h"

#include <array>
#include <random>
#include <string_view>
#include <vector>

namespace kestrove::x11 {
namespace {

constexpr auto ofWindows = std::to_array<std::string_view>(
    {"_NET_WM_NAME", "WM_NAME", "_NET_WM_PID", "WM_CLIENT_MACHINE", "_GTK_APPLICATION_ID",
     "_BAMF_DESKTOP_FILE", "_KDE_NET_WM_DESKTOP_FILE", "WM_CLASS", "_NET_WM_WINDOW_TYPE",
     "_NET_WM_WINDOW_OPACITY", "_GTK_FRAME_EXTENTS", "_NET_WM_STATE", "WM_STATE", "_NET_WM_DESKTOP",
     "_NET_WM_STRUT", "_NET_WM_STRUT_PARTIAL", "_NET_SUPPORTING_WM_CHECK"});
constexpr auto ofTheRoot = std::to_array<std::string_view>(
    {"_NET_SUPPORTING_WM_CHECK", "_NET_CLIENT_LIST", "_NET_CLIENT_LIST_STACKING",
     "_NET_ACTIVE_WINDOW", "_NET_CURRENT_DESKTOP", "_NET_WORKAREA", "_GTK_WORKAREAS_D0"});
constexpr auto types = std::to_array<std::string_view>(
    {"STRING", "UTF8_STRING", "COMPOUND_TEXT", "CARDINAL", "ATOM", "WINDOW", "WM_STATE"});

/// Properties of any type, format, length and content, set on real windows by a program that means
/// no good, a window manager among them. Whatever we read of it makes sense.
class StrangeProperties : public X11Fixture, public testing::WithParamInterface<unsigned> {
protected:
    StrangeProperties()
        : m_random(GetParam()) {
        for (int i = 0; i < 3; ++i)
            m_windows.push_back(makeWindow({.geometry = {100, 100, 300, 200}}));
    }

    void setAnything() {
        const bool isOfRoot = m_random() % 3 == 0;
        const auto window = isOfRoot ? desktop.root() : m_windows[m_random() % 3]->id();
        const auto name = isOfRoot ? ofTheRoot[m_random() % ofTheRoot.size()]
                                   : ofWindows[m_random() % ofWindows.size()];
        const auto property = desktop.server().atom(name);
        if (m_random() % 8 == 0) {
            xcb_delete_property(desktop.connection(), window, property);
            return;
        }
        const auto type = desktop.server().atom(types[m_random() % types.size()]);
        constexpr std::array<std::uint8_t, 6> formats{8, 8, 16, 32, 32, 32};
        const auto format = formats[m_random() % formats.size()];
        const auto items = anyItems();
        xcb_change_property(desktop.connection(), XCB_PROP_MODE_REPLACE, window, property, type,
                            format, static_cast<std::uint32_t>(items.size()) * (32U / format),
                            items.data());
    }

    void expectSense() {
        // The server takes requests in the order in which they came; another connection waits.
        const test::Reply done(xcb_get_input_focus_reply(
            desktop.connection(), xcb_get_input_focus(desktop.connection()), nullptr));
        ASSERT_TRUE(done);
        const auto clients = readClientList(*connection);
        ASSERT_TRUE(clients);
        for (const auto& identity : readIdentities(*connection, *clients)) {
            for (const auto& text :
                 {identity.title, identity.bundleIdentifier, identity.applicationClass}) {
                EXPECT_TRUE(!text || (!text->empty() && fuzzing::isReadable(*text))) << *text;
            }
            EXPECT_TRUE(!identity.processID || *identity.processID > 0);
            EXPECT_TRUE(identity.alpha >= 0 && identity.alpha <= 1) << identity.alpha;
            EXPECT_GT(identity.rootBounds.width, 0);
            EXPECT_GT(identity.rootBounds.height, 0);
            EXPECT_LE(identity.rootBounds.maxX(), 32768 + 65536);
        }
        (void)readActiveWindow(*connection);
        const auto areas = readVisibleAreas(*connection, m_layout.monitors());
        ASSERT_EQ(areas.size(), m_layout.monitors().size());
        for (std::size_t i = 0; i < areas.size(); ++i) {
            const auto frame = m_layout.monitors()[i].rectangle;
            EXPECT_GT(areas[i].width, 0);
            EXPECT_GT(areas[i].height, 0);
            EXPECT_GE(areas[i].minX(), frame.x);
            EXPECT_LE(areas[i].maxX(), frame.x + frame.width);
            EXPECT_GE(areas[i].minY(), frame.y);
            EXPECT_LE(areas[i].maxY(), frame.y + frame.height);
        }
        EXPECT_TRUE(connection->isOpen());
    }

private:
    std::uint32_t anyItem() {
        const std::array<std::uint32_t, 8> likely{0,
                                                  1,
                                                  4,
                                                  0x7FFFFFFF,
                                                  0xFFFFFFFF,
                                                  desktop.root(),
                                                  m_windows[m_random() % 3]->id(),
                                                  static_cast<std::uint32_t>(m_random() % 2000)};
        return m_random() % 4 == 0 ? static_cast<std::uint32_t>(m_random())
                                   : likely[m_random() % likely.size()];
    }
    std::vector<std::uint32_t> anyItems() {
        constexpr std::size_t longest = 16;
        // Now and then longer than anybody reads.
        constexpr std::size_t veryLong = 10000;
        std::vector<std::uint32_t> items(m_random() % 200 == 0 ? veryLong : m_random() % longest);
        for (auto& item : items)
            item = anyItem();
        return items;
    }

    std::mt19937 m_random;
    std::vector<std::unique_ptr<test::TestWindow>> m_windows;
    MonitorLayout m_layout{*connection};
};

INSTANTIATE_TEST_SUITE_P(Seeds, StrangeProperties, testing::Range(1U, 5U));

TEST_P(StrangeProperties, AreReadAsWhatMakesSense) {
    for (int round = 0; round < 200 && !HasFailure(); ++round) {
        for (int i = 0; i < 10; ++i)
            setAnything();
        expectSense();
    }
}

} // namespace
} // namespace kestrove::x11

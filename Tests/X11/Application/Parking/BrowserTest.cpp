#include "Tests/Support/Processes/Waiting.h"
#include "Tests/X11/Application/Parking/SteeredFixture.h"
#include "Tests/X11/Application/Paths.h"

#include <cstdlib>
#include <fmt/core.h>
#include <sstream>

namespace kestrove::test {
namespace {

/// What the page in the browser says of the window that it captures.
struct Report {
    int red = -1;
    int green = -1;
    int blue = -1;
    int endings = -1;
    int mutings = -1;
    std::vector<std::string> sizes;

    explicit Report(const std::string& title) {
        int read = 0;
        if (std::sscanf(title.c_str(), "call: %d,%d,%d ended %d muted %d sizes %n", &red, &green,
                        &blue, &endings, &mutings, &read) != 5)
            return;
        std::istringstream words(title.substr(static_cast<std::size_t>(read)));
        for (std::string word; words >> word && word != "-";)
            sizes.push_back(word);
    }

    [[nodiscard]] bool hasColor(Color color) const {
        // Pictures for calls are kept as brightness and two differences, rounded.
        constexpr int tolerance = 6;
        const auto isNear = [color](int value, unsigned shift) {
            return std::abs(value - static_cast<int>(color >> shift & 0xffU)) <= tolerance;
        };
        return isNear(red, 16) && isNear(green, 8) && isNear(blue, 0);
    }
};

/// Chromium in a call, to which the user gives the output window by its title.
class BrowserCall : public SteeredFixture, public testing::WithParamInterface<Desk> {
protected:
    BrowserCall()
        : SteeredFixture(GetParam()) {}

    /// On the right display, clear of what the tests paint.
    void join() {
        m_browser = desktop.start(
            {"chromium", "--no-sandbox", "--disable-gpu", "--no-first-run",
             "--password-store=basic", "--user-data-dir=" + (desktop.folder() / "browser").string(),
             "--window-position=1350,380", "--window-size=500,380",
             "--auto-select-window-capture-source-by-title=kestrove",
             "--disable-background-timer-throttling", "--disable-renderer-backgrounding",
             "--disable-backgrounding-occluded-windows",
             // Where windows that no window manager knows lie above all others, nobody can click.
             "--disable-features=GetDisplayMediaRequiresUserActivation",
             std::string("file://") + callPagePath() + "?x=0.27&y=0.28"});
        const auto isCall = [](std::string_view title) { return title.starts_with("call: "); };
        ASSERT_TRUE(waitUntil([&] { return (m_call = findTitled(isCall)) != XCB_WINDOW_NONE; }))
            << m_browser->logTail();
        ASSERT_TRUE(waitUntil([this] { return !report().sizes.empty(); })) << said();
    }

    [[nodiscard]] std::string said() const { return titleOf(m_call); }
    [[nodiscard]] Report report() const { return Report(said()); }

    /// What the display shows becomes another, and the browser sees it.
    [[nodiscard]] testing::AssertionResult seesLive(PaintedDisplay& display,
                                                    const xcb_rectangle_t& part) {
        m_shade = 0xff000000 | (m_shade + 0x00302010);
        display.paint(part, m_shade);
        if (waitUntil([this] { return report().hasColor(m_shade); }))
            return testing::AssertionSuccess();
        return testing::AssertionFailure()
               << fmt::format("{:#x}, but: {}", m_shade, titleOf(m_call));
    }
    [[nodiscard]] testing::AssertionResult seesLeft() {
        return seesLive(left, {100, 80, 200, 150});
    }
    [[nodiscard]] testing::AssertionResult seesRight() {
        return seesLive(right, {200, 100, 300, 250});
    }

    /// How many sizes the browser has seen, once these are `expected`: it says so a little after it
    /// has shown one.
    [[nodiscard]] std::size_t sizes(std::size_t expected) {
        (void)waitUntil([&] { return report().sizes.size() >= expected; });
        return report().sizes.size();
    }

private:
    std::unique_ptr<ChildProcess> m_browser;
    xcb_window_t m_call = XCB_WINDOW_NONE;
    Color m_shade = 0xff102030;
};

std::vector<Desk> desksForCalls() {
    std::vector<Desk> desks;
    for (const auto& desk : everyDesk()) {
        if (desk.name == "Openbox" || desk.name == "Mutter")
            desks.push_back(desk);
    }
    return desks;
}

INSTANTIATE_TEST_SUITE_P(Desks, BrowserCall, testing::ValuesIn(desksForCalls()),
                         [](const auto& tested) { return tested.param.name; });

TEST_P(BrowserCall, GoesOnThroughHidingMinimisingAndAnotherSource) {
    startSteered("kestrove.autoStart=true\n");
    ASSERT_TRUE(presents(left, "shown"));
    (void)placeToComeBackTo();
    ASSERT_NO_FATAL_FAILURE(join());
    ASSERT_EQ(sizes(1), 1) << said();
    server.movePointer(1900, 780);
    ASSERT_TRUE(seesRight());
    EXPECT_EQ(sizes(2), 2) << "the display's shape is another one: " << said();

    ASSERT_TRUE(parks());
    EXPECT_TRUE(seesRight()) << "hidden";
    tell("unhide");
    EXPECT_TRUE(waitUntil([this] { return isOutputViewable() && !isParked(); }));
    EXPECT_TRUE(seesRight()) << "shown again";
    minimise();
    ASSERT_TRUE(parks());
    EXPECT_TRUE(seesRight()) << "minimised, then hidden";
    EXPECT_EQ(sizes(2), 2) << "hiding is no change of size: " << said();

    server.movePointer(20, 20);
    EXPECT_TRUE(seesLeft()) << "another source, hidden";
    tell("unhide");
    EXPECT_TRUE(waitUntil([this] { return isOutputViewable() && !isParked(); }));
    EXPECT_TRUE(seesLeft()) << "another source, shown";
    EXPECT_EQ(sizes(3), 3) << "one change of size for one of the source's: " << said();

    EXPECT_EQ(report().endings, 0);
    EXPECT_EQ(report().mutings, 0);
}

} // namespace
} // namespace kestrove::test

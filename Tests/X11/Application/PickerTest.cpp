#include "Tests/Support/PixelReader/PixelReader.h"
#include "Tests/Support/Processes/FileContent.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/TestWindow/TestWindow.h"
#include "Tests/Support/XServer/KeyPresses.h"
#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Application/ApplicationFixture.h"
#include "Tests/X11/Application/Paths.h"
#include "Tests/X11/Application/SettingsWindow/SettingsWindowFixture.h"

#include <optional>
#include <string>

#include <fmt/core.h>
#include <xcb/composite.h>

namespace kestrove::test {
namespace {

namespace Keys = ServerKey;

constexpr std::uint32_t blue = 0xff3366cc;
constexpr std::uint32_t orange = 0xffcc6633;
constexpr std::uint32_t badgeColor = 0xff15803d;

/// Two windows of other programs on the right display, of one colour each, the orange one over a
/// part of the blue one. The picker opens above them, the output lies on the left display.
class Picker : public ApplicationFixture {
protected:
    void share() {
        m_blue.emplace(
            desktop.displayName(),
            TestWindow::Options{.geometry = {800, 100, 400, 300}, .color = blue, .title = "blue"});
        m_orange.emplace(desktop.displayName(),
                         TestWindow::Options{
                             .geometry = {900, 250, 400, 300}, .color = orange, .title = "orange"});
        start("kestrove.autoStart=true\nkestrove.followMode=mouse\n");
        ASSERT_TRUE(shows(left, "the pointer's display"));
        server.movePointer(1900, 780);
    }
    void openByShortcut() {
        pressTogether(desktop.connection(), {Keys::control, Keys::super, Keys::p});
        expectOpen();
    }
    void expectOpen() {
        ASSERT_TRUE(waitUntil([this] {
            m_picker = find("kestrove — ソース選択");
            return m_picker != XCB_WINDOW_NONE && focused() == m_picker;
        })) << program().logTail();
        // Kept by the server, it can be read also where the frame around the source lies over it.
        xcb_composite_redirect_window(desktop.connection(), m_picker,
                                      XCB_COMPOSITE_REDIRECT_AUTOMATIC);
        ASSERT_TRUE(waitUntil([this] { return hasPainted(); }));
    }
    /// Until then its pixels are what lies beneath: windows in the very colours of thumbnails.
    [[nodiscard]] bool hasPainted() const {
        const auto image = picture();
        const auto beneath = right.picture();
        return image.pixel(image.width - 1, image.height - 1) !=
               beneath.pixel(beneath.width - 1, beneath.height - 1);
    }
    [[nodiscard]] bool isOpen() const { return find("kestrove — ソース選択") != 0; }
    [[nodiscard]] xcb_window_t focused() const {
        const Reply focus(xcb_get_input_focus_reply(
            desktop.connection(), xcb_get_input_focus(desktop.connection()), nullptr));
        return focus ? focus->focus : xcb_window_t{XCB_WINDOW_NONE};
    }
    [[nodiscard]] PixelImage picture() const {
        return readWindowPixmap(desktop.connection(), m_picker);
    }

    struct Spot {
        int x = 0;
        int y = 0;
    };
    /// The middle of the thumbnail that is all of this colour, in the picker. What a display's
    /// thumbnail has of it is smaller.
    [[nodiscard]] static std::optional<Spot> findThumbnail(const PixelImage& image,
                                                           std::uint32_t color) {
        constexpr int narrowest = 150;
        std::optional<Spot> first;
        std::optional<Spot> last;
        for (int y = 0; y < image.height; ++y) {
            int run = 0;
            for (int x = 0; x < image.width; ++x) {
                run = image.pixel(x, y) == color ? run + 1 : 0;
                if (run < narrowest)
                    continue;
                if (!first)
                    first = Spot{x - narrowest / 2, y};
                last = Spot{x - narrowest / 2, y};
            }
        }
        if (!first)
            return std::nullopt;
        return Spot{(first->x + last->x) / 2, (first->y + last->y) / 2};
    }
    [[nodiscard]] bool waitForThumbnail(std::uint32_t color) const {
        return waitUntil([&] { return findThumbnail(picture(), color).has_value(); });
    }
    /// Whether the badge is at the top right corner of this thumbnail, and nowhere else.
    [[nodiscard]] bool isLive(std::uint32_t color) const {
        return waitUntil([&] {
            const auto image = picture();
            const auto thumbnail = findThumbnail(image, color);
            int inside = 0;
            int outside = 0;
            for (int y = 0; thumbnail && y < image.height; ++y) {
                for (int x = 0; x < image.width; ++x) {
                    if (image.pixel(x, y) != badgeColor)
                        continue;
                    const bool isThere = x > thumbnail->x && x < thumbnail->x + 120 &&
                                         y < thumbnail->y && y > thumbnail->y - 90;
                    ++(isThere ? inside : outside);
                }
            }
            return inside > 100 && outside == 0;
        });
    }
    void clickThumbnail(std::uint32_t color) {
        std::optional<Spot> spot;
        ASSERT_TRUE(waitUntil([&] {
            spot = findThumbnail(picture(), color);
            return spot.has_value();
        }));
        const Reply place(xcb_translate_coordinates_reply(
            desktop.connection(),
            xcb_translate_coordinates(desktop.connection(), m_picker, desktop.root(),
                                      static_cast<std::int16_t>(spot->x),
                                      static_cast<std::int16_t>(spot->y)),
            nullptr));
        ASSERT_TRUE(place);
        server.movePointer(place->dst_x, place->dst_y);
        server.click(1);
    }
    void press(xcb_keycode_t key) { pressTogether(desktop.connection(), {key}); }

    [[nodiscard]] bool hasPicked(const std::vector<const TestWindow*>& windows) const {
        std::string sources;
        for (const auto* const window : windows)
            sources += fmt::format("{}{{\"window\":{{\"_0\":{}}}}}", sources.empty() ? "" : ",",
                                   window->id());
        return waitUntil([&] {
            const auto settings = contentOf(settingsFile());
            return settings.contains("kestrove.manualSources=[" + sources + "]") &&
                   settings.contains("kestrove.followMode=manual");
        });
    }
    [[nodiscard]] bool showsAll(std::uint32_t color, std::string_view name) {
        const PixelImage image{400, 300, std::vector<std::uint32_t>(120'000, color)};
        return shows(image, name);
    }

    std::optional<TestWindow> m_blue;
    std::optional<TestWindow> m_orange;

private:
    xcb_window_t m_picker = XCB_WINDOW_NONE;
};

TEST_F(Picker, PicksByMouseAndMovesTheBadge) {
    share();
    openByShortcut();
    EXPECT_TRUE(waitForThumbnail(blue)) << "also where it is covered";
    EXPECT_TRUE(waitForThumbnail(orange));

    clickThumbnail(blue);
    EXPECT_TRUE(hasPicked({&*m_blue}));
    EXPECT_TRUE(showsAll(blue, "the picked window"));
    EXPECT_TRUE(isLive(blue));

    clickThumbnail(orange);
    EXPECT_TRUE(hasPicked({&*m_blue, &*m_orange}));
    clickThumbnail(blue);
    EXPECT_TRUE(hasPicked({&*m_orange}));
    EXPECT_TRUE(showsAll(orange, "the one that is still picked"));
    EXPECT_TRUE(isLive(orange));
    EXPECT_TRUE(isOpen());
}

TEST_F(Picker, PicksByKeyboardAndCloses) {
    share();
    server.movePointer(20, 20);
    openMenuByKey();
    server.movePointer(1900, 780);
    chooseFromMenu(2);
    expectOpen();
    ASSERT_TRUE(waitForThumbnail(blue));
    ASSERT_TRUE(waitForThumbnail(orange));
    const bool isBlueFirst =
        findThumbnail(picture(), blue)->x < findThumbnail(picture(), orange)->x;
    const auto* const first = isBlueFirst ? &*m_blue : &*m_orange;
    const auto* const second = isBlueFirst ? &*m_orange : &*m_blue;

    press(Keys::down); // from the first display to the first window
    press(Keys::space);
    EXPECT_TRUE(hasPicked({first}));
    EXPECT_TRUE(isLive(isBlueFirst ? blue : orange));
    press(Keys::right);
    press(Keys::returnKey);
    EXPECT_TRUE(hasPicked({first, second}));
    press(Keys::left);
    press(Keys::space);
    EXPECT_TRUE(hasPicked({second}));
    EXPECT_TRUE(isLive(isBlueFirst ? orange : blue));
    press(Keys::escape);
    EXPECT_TRUE(waitUntil([this] { return !isOpen(); }));
    EXPECT_TRUE(program().isRunning());
}

TEST_F(Picker, HidesWhenTheUserTurnsElsewhereAndIsShownFresh) {
    share();
    openByShortcut();
    ASSERT_TRUE(waitForThumbnail(blue));
    const auto output = outputPlace();
    server.movePointer(output.x + 20, output.y + 20);
    server.click(1);
    EXPECT_TRUE(waitUntil([this] { return !isOpen(); }));

    m_blue.reset();
    server.movePointer(1900, 780);
    openByShortcut();
    // What it showed last stays until it has listed anew.
    EXPECT_TRUE(waitUntil([this] { return !findThumbnail(picture(), blue); }));
    EXPECT_TRUE(waitForThumbnail(orange));
    EXPECT_TRUE(program().isRunning());
}

TEST_F(Picker, IsOneForQuickPressesOfItsKey) {
    share();
    for (int press = 0; press < 5; ++press)
        pressTogether(desktop.connection(), {Keys::control, Keys::super, Keys::p});
    expectOpen();
    EXPECT_TRUE(waitForThumbnail(blue));
    clickThumbnail(blue);
    EXPECT_TRUE(hasPicked({&*m_blue})) << "each window has one tile, which is ticked once";
    press(Keys::escape);
    EXPECT_TRUE(waitUntil([this] { return !isOpen(); })) << "there is no second one";
    EXPECT_TRUE(program().isRunning());
}

TEST_F(Picker, IsNotOnTheSharedDisplay) {
    start(onlyDisplay("RIGHT"));
    ApplicationFixture::press(Key::space);
    ASSERT_TRUE(shows(right, "before"));
    server.movePointer(1900, 780);
    openByShortcut();
    right.paint({10, 600, 300, 150}, 0xff1188aa);
    server.movePointer(20, 20);
    EXPECT_TRUE(shows(right, "with the picker above it"));
    EXPECT_TRUE(isOpen());
}

/// What assistive technology is told of the picker.
class PickerAccessibility : public SettingsWindowFixture {
protected:
    PickerAccessibility()
        : SettingsWindowFixture("kestrove — ソース選択") {}
};

TEST_F(PickerAccessibility, TellsEveryTileAndWhatBecomesOfIt) {
    const TestWindow window(desktop.displayName(),
                            {.geometry = {800, 100, 400, 300}, .title = "notes.txt"});
    writeSettings("kestrove.autoStart=true\nkestrove.followMode=mouse\n");
    start(std::vector<std::string>{"env", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1", programPath()});
    ASSERT_TRUE(shows(left, "the pointer's display"));
    pressControlSuper(Keys::p);
    EXPECT_TRUE(
        tells({"label|ソースを選択|", "label|0 件選択中|", "push button|更新||focusable,enabled|",
               "check box|LEFT|640 × 512、LIVE|focusable,focused,enabled|",
               "check box|RIGHT|1280 × 800|focusable,enabled|",
               "check box|notes.txt|TestWindow|focusable,enabled|"}));
    press({Keys::right});
    press({Keys::space});
    EXPECT_TRUE(tells({"label|1 件選択中|",
                       "check box|RIGHT|1280 × 800、LIVE|checked,focusable,focused,enabled|",
                       "check box|LEFT|640 × 512|focusable,enabled|"}));
}

} // namespace
} // namespace kestrove::test

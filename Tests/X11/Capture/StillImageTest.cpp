#include "Tests/Support/XServer/ServerMemory.h"
#include "Tests/X11/Capture/CaptureFixture.h"

#include <algorithm>
#include <memory>
#include <optional>

namespace kestrove::test {
namespace {

using Image = std::expected<StillImage, PlatformError>;

constexpr std::uint32_t drawnColor = 0xff20a0d0;

/// A window of a program that draws when it is asked to, as most do: the server keeps nothing of it
/// where it is covered.
class DrawingProgram {
public:
    DrawingProgram(const std::string& displayName, const xcb_rectangle_t& place)
        : m_connection(xcb_connect(displayName.c_str(), nullptr))
        , m_window(xcb_generate_id(m_connection.get()))
        , m_graphics(xcb_generate_id(m_connection.get())) {
        auto* const xcb = m_connection.get();
        const auto* const screen = xcb_setup_roots_iterator(xcb_get_setup(xcb)).data;
        const std::uint32_t values[] = {1, XCB_EVENT_MASK_EXPOSURE};
        xcb_create_window(xcb, XCB_COPY_FROM_PARENT, m_window, screen->root, place.x, place.y,
                          place.width, place.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                          values);
        xcb_create_gc(xcb, m_graphics, m_window, XCB_GC_FOREGROUND, &drawnColor);
        xcb_map_window(xcb, m_window);
        xcb_flush(xcb);
    }

    [[nodiscard]] xcb_window_t id() const { return m_window; }

    /// Draws what the server has asked for; whether it has.
    bool draw() {
        bool hasDrawn = false;
        while (
            const x11::Reply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection.get())}) {
            if ((event->response_type & 0x7F) != XCB_EXPOSE)
                continue;
            const auto& expose = reinterpret_cast<const xcb_expose_event_t&>(*event);
            const xcb_rectangle_t part{static_cast<std::int16_t>(expose.x),
                                       static_cast<std::int16_t>(expose.y), expose.width,
                                       expose.height};
            xcb_poly_fill_rectangle(m_connection.get(), m_window, m_graphics, 1, &part);
            hasDrawn = true;
        }
        xcb_flush(m_connection.get());
        return hasDrawn;
    }

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    xcb_window_t m_window;
    xcb_gcontext_t m_graphics;
};

class StillImageTest : public testing::Test {
protected:
    static StreamConfiguration sized(int width, int height) {
        StreamConfiguration configuration;
        configuration.width = width;
        configuration.height = height;
        return configuration;
    }
    static Task<void> take(ScreenCapture& capture, ContentFilter filter,
                           StreamConfiguration configuration, std::optional<Image>* image) {
        *image = co_await capture.captureImage(std::move(filter), configuration);
    }
    static std::uint32_t pixel(const StillImage& image, int x, int y) {
        const auto* const bytes = &image.pixels[static_cast<std::size_t>(y * image.width + x) * 4];
        return 0xff000000U | static_cast<std::uint32_t>(bytes[2]) << 16U |
               static_cast<std::uint32_t>(bytes[1]) << 8U | bytes[0];
    }

    CaptureDesktop m_test;
    TaskScope m_tasks{m_test.loop};
};

TEST_F(StillImageTest, OfACoveredWindowIsWhatItsProgramDrawsWhenAsked) {
    DrawingProgram program(m_test.desktop.displayName(), {100, 100, 300, 200});
    ASSERT_TRUE(m_test.loop.spinUntil([&] { return program.draw(); }));
    const TestWindow cover(
        m_test.desktop.displayName(),
        {.geometry = {50, 50, 250, 300}, .color = 0xff00ff00, .overrideRedirect = true});
    std::optional<Image> image;
    m_tasks.launch(take(*m_test.capture, WindowFilter(program.id()), sized(300, 200), &image));
    ASSERT_TRUE(m_test.loop.spinUntil([&] {
        program.draw();
        return image.has_value();
    }));
    ASSERT_TRUE(image->has_value());
    for (const auto& [x, y] : {std::pair{5, 5}, {150, 100}, {195, 150}, {290, 190}})
        EXPECT_EQ(pixel(**image, x, y), drawnColor) << x << ", " << y;
}

TEST_F(StillImageTest, OfManyWindowsAreMadeWhileTheMainThreadGoesOn) {
    constexpr int count = 12;
    std::vector<std::unique_ptr<TestWindow>> windows;
    std::vector<std::optional<Image>> images(count);
    for (int each = 0; each < count; ++each) {
        const auto color = 0xff000000U | static_cast<std::uint32_t>(each * 20);
        windows.push_back(std::make_unique<TestWindow>(
            m_test.desktop.displayName(), TestWindow::Options{.geometry = {10, 10, 1000, 700},
                                                              .color = color,
                                                              .overrideRedirect = true}));
    }
    for (std::size_t each = 0; each < windows.size(); ++each)
        m_tasks.launch(take(*m_test.capture, WindowFilter(windows[each]->id()), sized(480, 336),
                            &images[each]));
    std::size_t most = 0;
    bool wasPartly = false;
    ASSERT_TRUE(m_test.loop.spinUntil([&] {
        const auto done = static_cast<std::size_t>(
            std::ranges::count_if(images, [](const auto& image) { return image.has_value(); }));
        wasPartly = wasPartly || (done > 0 && done < images.size());
        most = std::max(most, done);
        return most == images.size();
    }));
    EXPECT_TRUE(wasPartly) << "each comes when it is there";
    for (std::size_t each = 0; each < images.size(); ++each) {
        ASSERT_TRUE(images[each]->has_value());
        EXPECT_EQ(pixel(**images[each], 240, 160), 0xff000000U | each * 20);
    }
}

TEST_F(StillImageTest, FailsWhenTheWindowGoesMeanwhile) {
    TestWindow window(m_test.desktop.displayName(),
                      {.geometry = {10, 10, 300, 200}, .overrideRedirect = true});
    std::optional<Image> image;
    m_tasks.launch(take(*m_test.capture, WindowFilter(window.id()), sized(300, 200), &image));
    m_test.loop.runUntilIdle();
    ASSERT_FALSE(image) << "it is on its way";
    window.destroy();
    ASSERT_TRUE(m_test.loop.spinUntil([&] { return image.has_value(); }));
    EXPECT_FALSE(image->has_value());
}

TEST_F(StillImageTest, HasASizeThatTheServerCanDraw) {
    const TestWindow window(m_test.desktop.displayName(),
                            {.geometry = {10, 10, 300, 200}, .overrideRedirect = true});
    for (const auto& [width, height] : {std::pair{480, 40000}, {70000, 10}, {480, 0}, {-1, 5}}) {
        std::optional<Image> image;
        m_tasks.launch(
            take(*m_test.capture, WindowFilter(window.id()), sized(width, height), &image));
        ASSERT_TRUE(m_test.loop.spinUntil([&] { return image.has_value(); }));
        EXPECT_FALSE(image->has_value()) << width << " x " << height;
    }
}

TEST_F(StillImageTest, FailsWhereTheServerHasNoMemoryForIt) {
    const TestWindow large(
        m_test.desktop.displayName(),
        {.geometry = {0, 0, 6000, 6000}, .color = drawnColor, .overrideRedirect = true});
    const TestWindow small(
        m_test.desktop.displayName(),
        {.geometry = {0, 0, 300, 200}, .color = 0xff804020, .overrideRedirect = true});
    ServerMemory memory(m_test.desktop.server());
    memory.keepPicture(large.id());
    const auto taken = [&](const TestWindow& window) {
        std::optional<Image> image;
        m_tasks.launch(take(*m_test.capture, WindowFilter(window.id()), sized(480, 320), &image));
        EXPECT_TRUE(m_test.loop.spinUntil([&] { return image.has_value(); }));
        return image.value_or(std::unexpected(PlatformError("test", 0)));
    };
    // A picture of the large window takes 144 MB, the first step of making it smaller 36 MB: there
    // is memory for neither, then for the former alone.
    for (const rlim_t spare : {24'000'000, 164'000'000}) {
        memory.limit(spare);
        const auto refused = taken(large);
        ASSERT_FALSE(refused) << "with " << spare << " bytes";
        EXPECT_EQ(refused.error().code, XCB_ALLOC);
        const auto other = taken(small);
        ASSERT_TRUE(other);
        EXPECT_EQ(pixel(*other, 240, 160), 0xff804020U);
        memory.free();
    }
    const auto image = taken(large);
    ASSERT_TRUE(image);
    EXPECT_EQ(pixel(*image, 240, 160), drawnColor);
}

TEST_F(StillImageTest, OfADisplayHasNoWindowThatIsNeverCaptured) {
    const TestWindow below(
        m_test.desktop.displayName(),
        {.geometry = {0, 0, 400, 300}, .color = 0xff102030, .overrideRedirect = true});
    const TestWindow own(
        m_test.desktop.displayName(),
        {.geometry = {100, 100, 100, 100}, .color = 0xffffffff, .overrideRedirect = true});
    const auto area = m_test.monitors->monitors().front().rectangle;
    const auto colorThere = [&] {
        std::optional<Image> image;
        m_tasks.launch(
            take(*m_test.capture, m_test.display(0), sized(area.width, area.height), &image));
        EXPECT_TRUE(m_test.loop.spinUntil([&] { return image.has_value(); }));
        return image && image->has_value() ? pixel(**image, 150, 150) : 0;
    };
    EXPECT_EQ(colorThere(), 0xffffffffU);
    m_test.capture->neverCaptured().add(own.id());
    EXPECT_EQ(colorThere(), 0xff102030U);
    m_test.capture->neverCaptured().remove(own.id());
    EXPECT_EQ(colorThere(), 0xffffffffU);
}

TEST_F(StillImageTest, AStreamFollowsWhatIsNeverCaptured) {
    const TestWindow below(
        m_test.desktop.displayName(),
        {.geometry = {0, 0, 400, 300}, .fill = WindowFill::pattern, .overrideRedirect = true});
    const auto area = m_test.monitors->monitors().front().rectangle;
    m_test.openOutput({static_cast<std::int16_t>(area.x + area.width), 0, area.width, area.height});
    m_test.start(m_test.display(0));
    ASSERT_TRUE(m_test.outputBecomesScreen(area, "without the window"));
    const auto expected = m_test.screen(area);
    TestWindow own(m_test.desktop.displayName(), {.geometry = {100, 100, 100, 100},
                                                  .color = 0xffffffff,
                                                  .overrideRedirect = true,
                                                  .mapped = false});
    m_test.capture->neverCaptured().add(own.id());
    own.show();
    m_test.settle();
    EXPECT_TRUE(m_test.outputBecomes(expected, "the window is not seen"));
    m_test.capture->neverCaptured().remove(own.id());
    EXPECT_TRUE(m_test.outputBecomesScreen(area, "the window is seen"));
}

} // namespace
} // namespace kestrove::test

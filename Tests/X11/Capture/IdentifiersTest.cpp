// The server gives each client a limited number of identifiers, which a session of days uses up.

#include "Tests/X11/Capture/CaptureFixture.h"

namespace kestrove::test {
namespace {

constexpr xcb_rectangle_t wholeLeft{0, 0, 1280, 800};

TEST(Identifiers, AreThoseOfWhatIsGoneWhenAllHaveBeenUsed) {
    CaptureDesktop test;
    TestWindow window(
        test.desktop.displayName(),
        {.geometry = {100, 80, 500, 400}, .fill = WindowFill::pattern, .overrideRedirect = true});
    test.openOutput({1280, 0, 1280, 800});
    test.start(test.display(0));
    ASSERT_TRUE(test.outputBecomesScreen(wholeLeft, "at first"));

    const auto last = xcb_get_setup(test.connection->get())->resource_id_mask;
    for (std::uint32_t used = 0; used <= last; ++used)
        ASSERT_NE(test.connection->generateIdentifier(), ~std::uint32_t{0});

    window.fillRectangle({10, 10, 50, 50}, 0xFF00FF00);
    EXPECT_TRUE(test.outputBecomesScreen(wholeLeft, "what was shared goes on"));
    test.retarget(WindowFilter{window.id()});
    test.resizeOutput(500, 400);
    const auto picture = readPixels(test.desktop.connection(), window.id());
    EXPECT_TRUE(test.outputBecomes(picture, "another source"));
    test.retarget(test.display(0));
    test.resizeOutput(1280, 800);
    window.move(300, 200);
    EXPECT_TRUE(test.outputBecomesScreen(wholeLeft, "and back"));
    EXPECT_TRUE(test.stops.empty());
}

} // namespace
} // namespace kestrove::test

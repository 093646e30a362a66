// What the server told of a window before its size was asked is told to whoever asks once more
// about the same window, though it is older than the answer, and nothing newer may follow.

#include "Platform/X11/Capture/WindowContent.h"
#include "Tests/X11/Capture/CaptureFixture.h"

namespace kestrove::test {
namespace {

constexpr xcb_rectangle_t sourcePlace{0, 0, 600, 400};
constexpr xcb_rectangle_t outputPlace{1280, 0, 600, 400};

class StaleEvents : public testing::Test {
protected:
    CaptureDesktop test;
    TestWindow source{test.desktop.displayName(), TestWindow::Options{.geometry = sourcePlace,
                                                                      .fill = WindowFill::pattern,
                                                                      .overrideRedirect = true}};
};

TEST_F(StaleEvents, DoNotResizeALayerThatComesBackToItsHost) {
    test.openOutput(outputPlace);
    test.start(WindowFilter(source.id()));
    ASSERT_TRUE(test.outputBecomes(test.screen(sourcePlace), "before"));

    test.resizeOutput(300, 200);
    test.layer->setHost(0);
    test.connection->synchronize();
    test.resizeOutput(600, 400);
    test.layer->setHost(test.outputWindow());
    test.settle();
    EXPECT_TRUE(test.outputBecomes(test.screen(sourcePlace), "after"));
}

TEST_F(StaleEvents, DoNotResizeAWindowThatIsCapturedAgain) {
    x11::WindowsNeverCaptured none;
    x11::CaptureServices services(*test.connection, *test.motion, none);
    const auto open = [&] {
        auto opened = x11::WindowContent::open(*test.connection, services, source.id());
        EXPECT_TRUE(opened);
        return std::move(*opened);
    };
    auto content = open();
    test.settle();

    source.resize(300, 200);
    content.reset();
    test.connection->synchronize();
    source.resize(600, 400);
    content = open();
    test.settle();
    EXPECT_EQ(content->extent().width, 600);
    EXPECT_EQ(content->extent().height, 400);
}

} // namespace
} // namespace kestrove::test

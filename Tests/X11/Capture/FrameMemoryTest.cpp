// What the X server holds for what is shared: pixmaps, counted by the server itself.

#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Capture/CaptureFixture.h"

#include <cstdint>
#include <xcb/res.h>

namespace kestrove::test {
namespace {

constexpr xcb_rectangle_t wholeLeft{0, 0, 1280, 800};
constexpr std::int64_t bytesOfLeft = std::int64_t{4} * 1280 * 800;

class FrameMemory : public testing::Test {
protected:
    void share(ContentFilter filter, const xcb_rectangle_t& output) {
        m_before = bytes();
        test.openOutput(output);
        test.start(std::move(filter));
        test.settle();
    }

    /// Of pixmaps, for what has been shared since.
    [[nodiscard]] std::int64_t taken() { return bytes() - m_before; }

    CaptureDesktop test;
    TestWindow window{test.desktop.displayName(),
                      {.geometry = wholeLeft, .overrideRedirect = true}};

private:
    std::int64_t bytes() {
        auto* const asking = test.desktop.connection();
        test.connection->synchronize();
        const auto client = xcb_get_setup(test.connection->get())->resource_id_base;
        const Reply reply(xcb_res_query_client_pixmap_bytes_reply(
            asking, xcb_res_query_client_pixmap_bytes(asking, client), nullptr));
        EXPECT_TRUE(reply);
        return reply ? std::int64_t{reply->bytes} : 0; // far below what overflows
    }

    std::int64_t m_before = 0;
};

TEST_F(FrameMemory, OfADisplayIsTwoFramesAtMost) {
    share(test.display(0), {1280, 0, 640, 400});
    EXPECT_GE(taken(), bytesOfLeft / 2) << "nothing was counted";
    EXPECT_LE(taken(), 2 * bytesOfLeft);
}

TEST_F(FrameMemory, OfAWindowIsTwoFramesAtMost) {
    share(WindowFilter(window.id()), {1280, 0, 640, 400});
    EXPECT_GE(taken(), bytesOfLeft / 2) << "nothing was counted";
    EXPECT_LE(taken(), 2 * bytesOfLeft);
}

TEST_F(FrameMemory, IsGivenBack) {
    share(test.display(0), {1280, 0, 640, 400});
    test.stop();
    test.layer->flush();
    test.settle();
    EXPECT_LE(taken(), bytesOfLeft / 1000);
}

TEST_F(FrameMemory, IsThatOfOneSourceAfterManySwitches) {
    share(test.display(0), {1280, 0, 640, 400});
    for (int round = 0; round < 10; ++round) {
        test.retarget(WindowFilter(window.id()));
        test.retarget(test.display(0));
    }
    test.settle();
    EXPECT_LE(taken(), 2 * bytesOfLeft);
}

} // namespace
} // namespace kestrove::test

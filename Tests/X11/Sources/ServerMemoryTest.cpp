// The X server runs out of memory for pictures while something is shared.

#include "Tests/Support/XServer/ServerMemory.h"
#include "Tests/X11/Sources/SourcesFixture.h"

namespace kestrove::test {
namespace {

class ShortServerMemory : public SourcesFixture {
protected:
    /// Far larger than the screen: its picture takes 144 MB of the server's memory.
    static constexpr xcb_rectangle_t enormous{1400, 200, 6000, 6000};
    static constexpr Color red = 0xffd01010;

    /// With `spare` bytes the window cannot be shown.
    void expectToBeSaidAndToEndByItself(rlim_t spare);

    ServerMemory m_memory{server()};
};

void ShortServerMemory::expectToBeSaidAndToEndByItself(rlim_t spare) {
    const auto large = startProgram("large", enormous, red);
    m_memory.keepPicture(large.window->id());
    start();
    ASSERT_TRUE(shows(leftColor));
    m_memory.limit(spare);
    ASSERT_NO_FATAL_FAILURE(tick(large.source()));
    EXPECT_TRUE(
        reaches(CaptureSessionState::recoveryRequired(CaptureRecoveryReason::streamStopped)));
    EXPECT_TRUE(controller().recoveryGuidance().has_value());
    EXPECT_FALSE(controller().activeSource().get().has_value());

    m_memory.free();
    // It was picked by hand, and is there.
    EXPECT_TRUE(shows(red));
    EXPECT_TRUE(isActive(large.source()));
    EXPECT_TRUE(reaches(CaptureSessionState::running()));
}

TEST_F(ShortServerMemory, ForThePictureOfTheSourceIsSaidAndEndsByItself) {
    expectToBeSaidAndToEndByItself(24'000'000);
}

// The picture has its memory, but not the first step of making it smaller, which takes 36 MB.
TEST_F(ShortServerMemory, ForScalingIsSaidAndEndsByItself) {
    expectToBeSaidAndToEndByItself(164'000'000);
}

} // namespace
} // namespace kestrove::test

// A program that does not say whose its window is, as those of plain X do not: the server knows.

#include "Tests/Support/PixelReader/PixelReader.h"
#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Sources/SourcesFixture.h"

#include <algorithm>
#include <csignal>

namespace kestrove::test {
namespace {

class SilentProgram : public SourcesFixture {
protected:
    static constexpr Color orange = 0xffe08010;
    static constexpr Color frameColor = 0xff34c759;

    void SetUp() override {
        // On the right display, away from the output. All of one colour.
        m_program = desktop().start(
            {"xlogo", "-geometry", "400x300+1600+300", "-fg", "#e08010", "-bg", "#e08010"});
        ASSERT_TRUE(loop.runUntil([this] { return findWindow(); })) << m_program->logTail();
        ASSERT_FALSE(server().hasProperty(m_source.identifier(), "_NET_WM_PID"));
        ASSERT_NO_FATAL_FAILURE(tick(m_source));
        start();
        ASSERT_TRUE(isActive(m_source));
    }

    [[nodiscard]] bool isMarked() const {
        const Reply place(xcb_translate_coordinates_reply(
            desktop().connection(),
            xcb_translate_coordinates(desktop().connection(), m_source.identifier(),
                                      desktop().root(), 0, 150),
            nullptr));
        if (!place)
            return false;
        const auto line = readPixels(desktop().connection(), desktop().root(),
                                     {place->dst_x, place->dst_y, 5, 1});
        return line.pixel(0, 0) == frameColor && line.pixel(3, 0) == frameColor &&
               line.pixel(4, 0) == orange;
    }

    std::unique_ptr<ChildProcess> m_program;
    CaptureSource m_source = CaptureSource::window(0);

private:
    bool findWindow() {
        controller().scheduleSourceRefresh();
        const auto& windows = controller().availableSources().get().windows;
        const auto found = std::ranges::find_if(windows, [this](const auto& info) {
            return info.windowOwner &&
                   info.windowOwner->processID == m_program->processIdentifier();
        });
        if (found != windows.end())
            m_source = found->source;
        return found != windows.end();
    }
};

TEST_F(SilentProgram, IsTickedMarkedAndFollowedToItsEnd) {
    EXPECT_TRUE(shows(orange));
    EXPECT_TRUE(loop.runUntil([this] { return isMarked(); }));

    m_program->signal(SIGKILL);
    EXPECT_TRUE(reaches(CaptureSessionState::waitingForSource()));
    EXPECT_TRUE(settings().manualSources.get().empty());
    EXPECT_NE(colorNow(), orange);
}

TEST_F(SilentProgram, IsFollowedAsTheApplicationInFront) {
    const auto other = startProgram("other", {1700, 400, 400, 300}, 0xff1020e0);
    ASSERT_NO_FATAL_FAILURE(tick(other.source()));
    activate(other);
    EXPECT_TRUE(isActive(other.source()));
    EXPECT_TRUE(shows(other.color));
    // As a click on its window does.
    server().movePointer(1650, 350);
    server().click(1);
    EXPECT_TRUE(isActive(m_source));
    EXPECT_TRUE(shows(orange));
}

} // namespace
} // namespace kestrove::test

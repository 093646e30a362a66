// A program hangs, stopped by a signal: its window stays, and answers nobody. It is shared, or is
// on the display that is shared.

#include "Tests/Support/PixelReader/PixelReader.h"
#include "Tests/Support/Processes/FileContent.h"
#include "Tests/Support/Processes/TemporaryFolder.h"
#include "Tests/X11/Sources/SourcesFixture.h"

#include <algorithm>
#include <csignal>
#include <fmt/format.h>
#include <fstream>

namespace kestrove::test {
namespace {

/// A terminal, whose background the test tells it.
class Terminal : public SourcesFixture {
protected:
    static constexpr Color red = 0xffd01010;
    static constexpr Color green = 0xff10c020;
    static constexpr Color blue = 0xff1020e0;

    /// `geometry`: in characters, and where on the root.
    void startTerminal(const std::string& geometry) {
        setContent(m_script, "\033[?25l"); // no cursor in the picture
        m_terminal = desktop().start({"xterm", "+sb", "-title", "hung", "-geometry", geometry, "-e",
                                      "tail", "-n", "+1", "-f", m_script});
        tell(red);
        ASSERT_TRUE(loop.runUntil([this] { return findTerminal(); })) << m_terminal->logTail();
    }

    /// What the terminal reads makes this its background.
    void tell(Color background) {
        std::ofstream(m_script, std::ios::app)
            << fmt::format("\033]11;#{:06x}\007", background & 0xffffffU) << std::flush;
    }
    void letPass(Seconds duration) {
        const auto end = loop.now() + duration;
        ASSERT_TRUE(loop.runUntil([&] { return loop.now() > end; }));
    }

    std::unique_ptr<ChildProcess> m_terminal;
    CaptureSource m_source = CaptureSource::window(0);

private:
    bool findTerminal() {
        controller().scheduleSourceRefresh();
        const auto& windows = controller().availableSources().get().windows;
        const auto found = std::ranges::find_if(windows, [this](const auto& info) {
            return info.windowOwner &&
                   info.windowOwner->processID == m_terminal->processIdentifier();
        });
        if (found != windows.end())
            m_source = found->source;
        return found != windows.end();
    }

    TemporaryFolder m_folder;
    std::filesystem::path m_script = m_folder.path() / "script";
};

class HungProgram : public Terminal {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(startTerminal("40x12+300+250"));
        ASSERT_NO_FATAL_FAILURE(tick(m_source));
        start();
        ASSERT_TRUE(isActive(m_source));
        ASSERT_TRUE(shows(red));
    }
};

TEST_F(HungProgram, KeepsItsLastContentAndIsLiveAgainWhenItGoesOn) {
    m_terminal->signal(SIGSTOP);
    tell(green);
    letPass(Seconds(11)); // two refreshes of the list of sources
    EXPECT_EQ(controller().sessionState().get(), CaptureSessionState::running());
    EXPECT_EQ(controller().activeSource().get(), m_source);
    EXPECT_EQ(colorNow(), red);
    EXPECT_FALSE(controller().recoveryGuidance().has_value());

    m_terminal->signal(SIGCONT);
    EXPECT_TRUE(shows(green));
    EXPECT_EQ(controller().sessionState().get(), CaptureSessionState::running());
}

TEST_F(HungProgram, CanBeLeftAndTakenUpAgain) {
    m_terminal->signal(SIGSTOP);
    const auto other = startProgram("other", {1400, 300, 400, 300}, blue);
    ASSERT_NO_FATAL_FAILURE(tick(other.source()));
    activate(other);
    EXPECT_TRUE(shows(blue));
    controller().toggleSource(other.source(), std::nullopt);
    EXPECT_TRUE(isActive(m_source));
    EXPECT_TRUE(shows(red));
    controller().stop();
    ASSERT_TRUE(reaches(CaptureSessionState::stopped()));
    controller().start();
    EXPECT_TRUE(reaches(CaptureSessionState::running()));
    EXPECT_TRUE(shows(red));

    tell(green);
    m_terminal->signal(SIGCONT);
    EXPECT_TRUE(shows(green));
}

TEST_F(HungProgram, IsForgottenWhenItIsKilled) {
    m_terminal->signal(SIGSTOP);
    letPass(Seconds(6));
    m_terminal->signal(SIGKILL);
    EXPECT_TRUE(reaches(CaptureSessionState::waitingForSource()));
    EXPECT_TRUE(settings().manualSources.get().empty());
    EXPECT_NE(colorNow(), red);
    const auto other = startProgram("other", {1400, 300, 400, 300}, blue);
    ASSERT_NO_FATAL_FAILURE(tick(other.source()));
    EXPECT_TRUE(shows(blue));
    EXPECT_EQ(controller().sessionState().get(), CaptureSessionState::running());
}

/// The right display is shared, with the terminal in its middle; the output is on the left one.
class HungProgramOnADisplay : public Terminal {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(startTerminal("100x40+1620+150"));
        server().movePointer(1300, 20);
        start();
        ASSERT_TRUE(isActive(display("RIGHT")));
        ASSERT_TRUE(shows(red));
    }

    [[nodiscard]] static Color screenNow() {
        return readPixels(desktop().connection(), desktop().root(), {1920, 400, 1, 1}).pixel(0, 0);
    }
};

TEST_F(HungProgramOnADisplay, DoesNotKeepTheDisplayFromBeingLive) {
    m_terminal->signal(SIGSTOP);
    tell(green);
    auto other = startProgram("other", {1700, 200, 500, 400}, blue);
    EXPECT_TRUE(shows(blue));
    letPass(Seconds(11)); // two refreshes of the list of sources
    EXPECT_EQ(controller().sessionState().get(), CaptureSessionState::running());
    EXPECT_FALSE(controller().recoveryGuidance().has_value());
    EXPECT_EQ(colorNow(), blue);

    // What lay under it is not drawn again; whatever the screen has there, nothing of it stays.
    kill(other);
    EXPECT_TRUE(loop.runUntil([this] { return colorNow() != blue && colorNow() == screenNow(); }));
    server().movePointer(30, 20);
    EXPECT_TRUE(shows(leftColor));
    server().movePointer(1300, 20);
    EXPECT_TRUE(isActive(display("RIGHT")));
    EXPECT_TRUE(loop.runUntil([this] { return colorNow() == screenNow(); }));

    m_terminal->signal(SIGCONT);
    EXPECT_TRUE(shows(green));
    EXPECT_EQ(controller().sessionState().get(), CaptureSessionState::running());
}

} // namespace
} // namespace kestrove::test

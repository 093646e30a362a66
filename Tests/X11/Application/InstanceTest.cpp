#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/KeyPresses.h"
#include "Tests/X11/Application/ApplicationFixture.h"
#include "Tests/X11/Application/Paths.h"

#include <algorithm>
#include <csignal>
#include <memory>
#include <string>
#include <vector>

namespace kestrove::test {
namespace {

/// One instance of the program for each X server.
class Instance : public ApplicationFixture {
protected:
    [[nodiscard]] std::unique_ptr<ChildProcess>
    startAgain(const std::vector<std::string>& options = {}) {
        std::vector<std::string> command{programPath()};
        command.insert(command.end(), options.begin(), options.end());
        return desktop.start(command);
    }
    [[nodiscard]] bool isPanelOpen() const { return find("Kestrove") != XCB_WINDOW_NONE; }

    /// Whether, of so many starts together, one goes on and the others end in order.
    [[nodiscard]] testing::AssertionResult oneStaysOf(int count) {
        std::vector<std::unique_ptr<ChildProcess>> started(static_cast<std::size_t>(count));
        std::ranges::generate(started, [this] { return startAgain(); });
        const auto isRunning = [](const auto& each) { return each->isRunning(); };
        (void)waitUntil([&] { return std::ranges::count_if(started, isRunning) <= 1; });
        if (std::ranges::count_if(started, isRunning) != 1)
            return testing::AssertionFailure() << "not one goes on";
        for (const auto& each : started) {
            if (each->exitCode().value_or(0) != 0)
                return testing::AssertionFailure() << each->logTail();
        }
        return testing::AssertionSuccess();
    }
};

TEST_F(Instance, ALaterStartEndsAndOpensThePanelOfTheFirst) {
    start("");
    const auto later = startAgain();
    ASSERT_TRUE(later->waitForExit(patience));
    EXPECT_EQ(later->exitCode(), 0) << later->logTail();
    EXPECT_TRUE(program().isRunning());
    EXPECT_TRUE(waitUntil([this] { return isPanelOpen(); }));
}

TEST_F(Instance, ALaterStartByTheSessionEndsAndOpensNothing) {
    start("");
    for (const auto& options :
         {std::vector<std::string>{"--autostart"}, {"-session", "2c0ffee_1_1", "-other"}}) {
        const auto later = startAgain(options);
        ASSERT_TRUE(later->waitForExit(patience));
        EXPECT_EQ(later->exitCode(), 0) << later->logTail();
    }
    // Whatever the first was asked for by them comes before what it is asked for now.
    pressTogether(desktop.connection(), {ServerKey::control, ServerKey::super, ServerKey::p});
    EXPECT_TRUE(waitUntil([this] { return find("kestrove — ソース選択") != XCB_WINDOW_NONE; }));
    EXPECT_FALSE(isPanelOpen());
}

TEST_F(Instance, StartedByTheSessionItIsTheFirst) {
    start({programPath(), "--autostart"});
    const auto later = startAgain();
    ASSERT_TRUE(later->waitForExit(patience));
    EXPECT_TRUE(waitUntil([this] { return isPanelOpen(); }));
}

TEST_F(Instance, OfManyStartsTogetherOneStays) {
    EXPECT_TRUE(oneStaysOf(5));
}

TEST_F(Instance, AfterACrashOneCanStartAgain) {
    start("");
    program().signal(SIGKILL);
    ASSERT_TRUE(program().waitForExit(patience));
    EXPECT_TRUE(oneStaysOf(2));
}

TEST_F(Instance, AfterTheEndOneCanStartAgain) {
    start("");
    program().signal(SIGTERM);
    ASSERT_TRUE(program().waitForExit(patience));
    EXPECT_TRUE(oneStaysOf(2));
}

TEST_F(Instance, SaysSoWhenTheFirstDoesNotAnswer) {
    start("");
    program().signal(SIGSTOP);
    const auto later = startAgain();
    ASSERT_TRUE(later->waitForExit(patience));
    EXPECT_EQ(later->exitCode(), 1);
    EXPECT_NE(later->logTail().find("応答しません"), std::string::npos) << later->logTail();
    program().signal(SIGCONT);
}

TEST_F(Instance, IsOneForEachServer) {
    start("");
    XDesktop other;
    const auto there = other.start({programPath()});
    const auto again = other.start({programPath()});
    // Which of the two was first on the other server is theirs to settle.
    ASSERT_TRUE(waitUntil([&] { return !there->isRunning() || !again->isRunning(); }));
    EXPECT_NE(there->isRunning(), again->isRunning());
    EXPECT_TRUE(program().isRunning());
}

} // namespace
} // namespace kestrove::test

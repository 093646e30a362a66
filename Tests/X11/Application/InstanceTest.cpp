#include "Tests/Support/Processes/Waiting.h"
#include "Tests/X11/Application/ApplicationFixture.h"
#include "Tests/X11/Application/Paths.h"

#include <algorithm>
#include <csignal>
#include <memory>
#include <vector>

namespace kestrove::test {
namespace {

/// One instance of the program for each X server.
class Instance : public ApplicationFixture {
protected:
    [[nodiscard]] std::unique_ptr<ChildProcess> startAgain() {
        return desktop.start({programPath()});
    }

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
    EXPECT_TRUE(waitUntil([this] { return find("Kestrove") != XCB_WINDOW_NONE; }));
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

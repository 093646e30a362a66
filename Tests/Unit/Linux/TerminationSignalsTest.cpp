#include "Platform/Linux/TerminationSignals.h"

#include <gtest/gtest.h>

#include <csignal>

namespace kestrove {
namespace {

/// Calls when it is told to, as a main loop would that found the descriptor readable.
class ManualWatching final : public DescriptorWatching {
public:
    Subscription watchReadable(int /*descriptor*/, std::function<void()> callback) override {
        ready = std::move(callback);
        return Subscription([this] { ready = nullptr; });
    }

    std::function<void()> ready;
};

TEST(TerminationSignals, TellsFromTheMainLoopThatTheProgramShouldEnd) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        ManualWatching watching;
        int times = 0;
        const TerminationSignals signals(watching, [&] { ++times; });
        watching.ready();
        EXPECT_EQ(times, 0) << "without any signal";
        std::raise(signal);
        EXPECT_EQ(times, 0) << "inside the signal's handler";
        watching.ready();
        EXPECT_EQ(times, 1);
        watching.ready();
        EXPECT_EQ(times, 1) << "told twice of one signal";
    }
}

TEST(TerminationSignals, LeavesTheSignalsAsTheyWere) {
    {
        ManualWatching watching;
        const TerminationSignals signals(watching, [] {});
    }
    struct sigaction action{};
    ASSERT_EQ(::sigaction(SIGTERM, nullptr, &action), 0);
    EXPECT_EQ(action.sa_handler, SIG_DFL);
}

TEST(TerminationSignalsDeathTest, LetsASecondSignalEndTheProcess) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            ManualWatching watching;
            const TerminationSignals signals(watching, [] {});
            std::raise(SIGTERM);
            std::raise(SIGTERM);
        },
        testing::KilledBySignal(SIGTERM), "");
}

} // namespace
} // namespace kestrove

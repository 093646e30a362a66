#include "Async/Debouncer.h"
#include "Platform/Simulated/SimulatedMainLoop.h"

#include <gtest/gtest.h>

#include <memory>

namespace kestrove {
namespace {

TEST(Debouncer, ABurstLeadsToOneRunAfterTheLastEvent) {
    SimulatedMainLoop loop;
    int runs = 0;
    Debouncer debouncer(loop, Seconds(0.15), [&runs] { ++runs; });
    for (int event = 0; event < 20; ++event) {
        debouncer.schedule();
        loop.advance(Seconds(0.1));
    }
    EXPECT_EQ(runs, 0);
    loop.advance(Seconds(0.04));
    EXPECT_EQ(runs, 0);
    loop.advance(Seconds(0.02));
    EXPECT_EQ(runs, 1);
    EXPECT_FALSE(debouncer.isPending());
    loop.advance(Seconds(10));
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(loop.timerCount(), 0U);
}

TEST(Debouncer, CancellingDropsWhatIsPending) {
    SimulatedMainLoop loop;
    int runs = 0;
    Debouncer debouncer(loop, Seconds(0.15), [&runs] { ++runs; });
    debouncer.schedule();
    EXPECT_TRUE(debouncer.isPending());
    debouncer.cancel();
    EXPECT_FALSE(debouncer.isPending());
    loop.advance(Seconds(1));
    EXPECT_EQ(runs, 0);
    debouncer.schedule();
    loop.advance(Seconds(1));
    EXPECT_EQ(runs, 1);
}

TEST(Debouncer, ItsActionMayScheduleItAnew) {
    SimulatedMainLoop loop;
    int runs = 0;
    std::unique_ptr<Debouncer> debouncer;
    debouncer = std::make_unique<Debouncer>(loop, Seconds(1), [&runs, &debouncer] {
        if (++runs < 3)
            debouncer->schedule();
    });
    debouncer->schedule();
    loop.advance(Seconds(10));
    EXPECT_EQ(runs, 3);
}

TEST(Debouncer, ItsActionMayDestroyIt) {
    SimulatedMainLoop loop;
    std::unique_ptr<Debouncer> debouncer;
    const auto marker = std::make_shared<int>(0);
    debouncer = std::make_unique<Debouncer>(loop, Seconds(1), [&debouncer, marker] {
        debouncer.reset();
        ++*marker;
    });
    debouncer->schedule();
    loop.advance(Seconds(10));
    EXPECT_EQ(*marker, 1);
    EXPECT_EQ(marker.use_count(), 1) << "the action has gone with it";
}

} // namespace
} // namespace kestrove

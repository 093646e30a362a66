#include "Tests/Contract/ContractSuites.h"

namespace kestrove::contract {

TEST_P(PointerContract, IsWhereItWasMovedInScreenCoordinates) {
    const auto screens = desktop().screens().screens();
    for (const auto& screen : screens) {
        const Point place{screen.frame.minX() + 30, screen.frame.minY() + 50};
        desktop().movePointer(place);
        EXPECT_TRUE(waitUntil([&] { return desktop().pointer().location() == place; }));
    }
}

TEST_P(PointerContract, AMoveOverNothingOfOursIsToldGloballyAlone) {
    desktop().movePointer({10, 10});
    desktop().settle();
    int global = 0;
    int local = 0;
    const auto globalMonitor = desktop().pointer().addGlobalMovedMonitor([&] { ++global; });
    const auto localMonitor = desktop().pointer().addLocalMovedMonitor([&] { ++local; });
    desktop().movePointer({40, 40});
    EXPECT_EQ(global, 0) << "only the main loop tells";
    EXPECT_TRUE(waitUntil([&] { return global > 0; }));
    desktop().settle();
    EXPECT_EQ(global, 1) << "one move, told once";
    EXPECT_EQ(local, 0);
}

TEST_P(PointerContract, AMoveOverAWindowOfOursIsToldLocallyAlone) {
    const auto height = mainScreen().frame.height;
    desktop().openWindow({.processID = desktop().ownProcess(), .frame = {200, 200, 300, 300}});
    desktop().movePointer({300, height - 300});
    desktop().settle();
    int global = 0;
    int local = 0;
    const auto globalMonitor = desktop().pointer().addGlobalMovedMonitor([&] { ++global; });
    const auto localMonitor = desktop().pointer().addLocalMovedMonitor([&] { ++local; });
    desktop().movePointer({310, height - 310});
    EXPECT_TRUE(waitUntil([&] { return local > 0; }));
    desktop().settle();
    EXPECT_EQ(global, 0);
}

TEST_P(PointerContract, TheLocationIsCurrentWhenAMonitorIsTold) {
    desktop().movePointer({10, 10});
    desktop().settle();
    Point seen;
    const auto monitor =
        desktop().pointer().addGlobalMovedMonitor([&] { seen = desktop().pointer().location(); });
    desktop().movePointer({70, 90});
    EXPECT_TRUE(waitUntil([&] { return seen == Point{70, 90}; }));
}

TEST_P(PointerContract, AMonitorMayEndItselfWhileBeingTold) {
    desktop().movePointer({10, 10});
    desktop().settle();
    int ended = 0;
    int other = 0;
    Subscription monitor;
    monitor = desktop().pointer().addGlobalMovedMonitor([&] {
        ++ended;
        monitor.cancel();
    });
    const auto staying = desktop().pointer().addGlobalMovedMonitor([&] { ++other; });
    desktop().movePointer({50, 50});
    ASSERT_TRUE(waitUntil([&] { return other == 1; }));
    desktop().movePointer({60, 60});
    ASSERT_TRUE(waitUntil([&] { return other == 2; }));
    EXPECT_EQ(ended, 1);
}

} // namespace kestrove::contract

#include "Tests/Unit/Core/AppController/Scenario.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>

// Each scenario is run once to count the moments at which the controller waits for a collaborator,
// and then once for every such moment, with something else happening there: the user stops, starts
// again, picks something else, the stream dies, the permission goes, the controller goes. What
// waits is let through oldest first, and in other runs newest first.

namespace kestrove {
namespace {

using State = CaptureSessionState;
using Order = AwaitGate::Order;
using AtAwait = std::function<void(int)>;

const PlatformError refused("X11", 11);

/// Lets everything that waits through, one after another; `atAwait` is told the number of each
/// moment at which something waits. Returns how many there were.
int runThrough(ControllerBench& bench, Order order, const AtAwait& atAwait) {
    constexpr int endless = 500;
    int awaits = 0;
    bench.settle();
    while (!bench.gate.waiting().empty() && awaits < endless) {
        atAwait(awaits++);
        bench.settle();
        if (!bench.gate.waiting().empty())
            bench.gate.letThrough(order);
        bench.settle();
    }
    EXPECT_LT(awaits, endless) << "it never comes to rest";
    return awaits;
}

int prepareAndRun(ControllerBench& bench, const Scenario& scenario, Order order,
                  const AtAwait& atAwait) {
    scenario.prepare(bench);
    bench.gate.hold();
    scenario.begin(bench);
    return runThrough(bench, order, atAwait);
}

/// What holds whenever nothing is on its way.
void expectRest(ControllerBench& bench) {
    const auto state = bench.state();
    const bool isShown = bench.active().has_value();
    EXPECT_EQ(bench.container.content != nullptr, isShown) << state;
    EXPECT_EQ(bench.overlay.marked, bench.active()) << state;
    if (state == State::running()) {
        EXPECT_TRUE(isShown);
        EXPECT_EQ(bench.engine.currentSource(), bench.active());
        EXPECT_TRUE(bench.scheduler.isScheduled());
        return;
    }
    if (!state.isActive()) {
        EXPECT_FALSE(bench.pointer.globalMoved.hasSubscribers()) << state;
        EXPECT_FALSE(bench.workspace.activated.hasSubscribers()) << state;
    }
    EXPECT_EQ(bench.engine.currentSource(), std::nullopt) << state;
    EXPECT_TRUE(state == State::waitingForSource() || state == State::stopped() ||
                state.permission() || state.recoveryReason())
        << state;
    if (state != State::stopped())
        EXPECT_FALSE(isShown) << state;
    if (state == State::waitingForSource())
        EXPECT_TRUE(bench.scheduler.isScheduled());
}

/// A session that runs by the pointer goes on following it.
void expectFollowing(ControllerBench& bench) {
    bench.gate.open();
    bench.engine.failures.clear();
    if (bench.state() != State::running() ||
        isAutoFollow(bench.settings->followMode.get()) == false)
        return;
    // Away and back, so that the display that is under the pointer now is announced again.
    bench.pointAt(2);
    bench.pointAt(1);
    for (const DisplayID display : {2U, 1U}) {
        bench.pointAt(display);
        EXPECT_EQ(bench.state(), State::running());
        EXPECT_EQ(bench.active(), CaptureSource::display(display));
    }
}

class Interleaving : public testing::TestWithParam<Scenario> {
protected:
    /// Runs the scenario once for each order and each of its awaits.
    void forEachAwait(const std::function<void(Order, int)>& run) const {
        for (const auto order : {Order::oldestFirst, Order::newestFirst}) {
            ControllerBench counting;
            const int awaits = prepareAndRun(counting, GetParam(), order, [](int) {});
            EXPECT_GT(awaits, 0);
            expectRest(counting);
            expectFollowing(counting);
            for (int at = 0; at < awaits; ++at) {
                SCOPED_TRACE(fmt::format("{} first, at await {} of {}",
                                         order == Order::oldestFirst ? "oldest" : "newest", at,
                                         awaits));
                run(order, at);
                if (HasFailure())
                    return;
            }
        }
    }

    /// Runs the scenario with `action` at one await.
    void actAt(ControllerBench& bench, Order order, int at, const Action& action) const {
        prepareAndRun(bench, GetParam(), order, [&](int await) {
            if (await == at)
                action(bench);
        });
    }
};

TEST_P(Interleaving, AStopEndsInStoppedWithNothingMoreShown) {
    forEachAwait([this](Order order, int at) {
        ControllerBench bench;
        bool isAccepted = false;
        const ContainerView* shownAtStop = nullptr;
        actAt(bench, order, at, [&](ControllerBench&) {
            isAccepted = bench.state().isActive();
            shownAtStop = bench.container.content;
            (void)bench.events();
            bench.controller->stop();
        });
        expectRest(bench);
        if (!isAccepted)
            return;
        EXPECT_EQ(bench.state(), State::stopped());
        EXPECT_TRUE(bench.container.content == nullptr || bench.container.content == shownAtStop);
        EXPECT_FALSE(bench.scheduler.isScheduled());
        for (const auto& call : bench.events()) {
            EXPECT_FALSE(call == "show content" || call.starts_with("match") ||
                         call.starts_with("mark") || call.starts_with("engine switch"))
                << call;
        }
    });
}

TEST_P(Interleaving, TheControllerMayGo) {
    forEachAwait([this](Order order, int at) {
        ControllerBench bench;
        actAt(bench, order, at, [](ControllerBench& going) {
            going.destroy();
            (void)going.events();
        });
        EXPECT_EQ(bench.events(), std::vector<std::string>());
        EXPECT_FALSE(bench.scheduler.isScheduled());
        EXPECT_FALSE(bench.pointer.globalMoved.hasSubscribers());
    });
}

TEST_P(Interleaving, AStartAfterAStopBeginsAnewAndNothingOldInterferes) {
    forEachAwait([](Order order, int stopAt) {
        // The stop makes awaits of its own, at which the start may come too.
        ControllerBench counting;
        const int awaits = prepareAndRun(counting, GetParam(), order, [&](int await) {
            if (await == stopAt)
                counting.controller->stop();
        });
        for (int startAt = stopAt; startAt < awaits; ++startAt) {
            SCOPED_TRACE(fmt::format("start at await {}", startAt));
            ControllerBench bench;
            bool isAccepted = false;
            prepareAndRun(bench, GetParam(), order, [&](int await) {
                if (await == stopAt)
                    bench.controller->stop();
                if (await == startAt) {
                    bench.permission = ScreenRecordingPermission::granted;
                    bench.engine.failures.clear();
                    const bool wasOn = bench.state().isActive();
                    bench.controller->start();
                    isAccepted = !wasOn && bench.state() == State::starting();
                }
            });
            expectRest(bench);
            if (isAccepted)
                EXPECT_NE(bench.state(), State::stopped());
            expectFollowing(bench);
        }
    });
}

TEST_P(Interleaving, AStreamThatDiesLeavesNothingShown) {
    forEachAwait([this](Order order, int at) {
        ControllerBench bench;
        actAt(bench, order, at, [](ControllerBench& dying) { dying.engine.endStream(); });
        expectRest(bench);
        expectFollowing(bench);
    });
}

TEST_P(Interleaving, AStreamThatDiesUnderAnUnfinishedReportLeavesNothingShown) {
    forEachAwait([this](Order order, int at) {
        ControllerBench bench;
        // The engine still names the source, as while it is being moved to another.
        actAt(bench, order, at, [](ControllerBench& dying) { dying.engine.unexpectedStop(); });
        // The stream of a report that is not the engine's own state goes with the next stop.
        bench.controller->stop();
        bench.gate.open();
        bench.settle();
        EXPECT_EQ(bench.overlay.marked, bench.active());
        EXPECT_FALSE(bench.state().isActive());
    });
}

TEST_P(Interleaving, ThePermissionMayGo) {
    forEachAwait([this](Order order, int at) {
        ControllerBench bench;
        actAt(bench, order, at, [](ControllerBench& revoked) {
            revoked.permission = ScreenRecordingPermission::revoked;
            revoked.lister.failure = refused;
            revoked.engine.failFor(display1, refused);
            revoked.engine.failFor(display2, refused);
        });
        expectRest(bench);
    });
}

TEST_P(Interleaving, TheUserMayPickSomethingElse) {
    forEachAwait([this](Order order, int at) {
        ControllerBench bench;
        bool wasOn = false;
        actAt(bench, order, at, [&wasOn](ControllerBench& picking) {
            wasOn = picking.state().isActive();
            picking.settings->followMode.set(FollowMode::manual);
            picking.settings->manualSources.set({window6});
        });
        expectRest(bench);
        if (bench.state() == State::running() && wasOn)
            EXPECT_EQ(bench.active(), window6);
    });
}

TEST_P(Interleaving, TheUserMayPickSeveral) {
    forEachAwait([this](Order order, int at) {
        ControllerBench bench;
        bool wasOn = false;
        actAt(bench, order, at, [&wasOn](ControllerBench& picking) {
            wasOn = picking.state().isActive();
            picking.settings->followMode.set(FollowMode::manual);
            picking.settings->manualSources.set({window6, display2});
        });
        expectRest(bench);
        if (bench.state() == State::running() && wasOn)
            EXPECT_TRUE(bench.active() == window6 || bench.active() == display2) << *bench.active();
    });
}

TEST_P(Interleaving, TheUserMayPickNothing) {
    forEachAwait([this](Order order, int at) {
        ControllerBench bench;
        actAt(bench, order, at, [](ControllerBench& picking) {
            picking.settings->followMode.set(FollowMode::manual);
            picking.settings->manualSources.set({});
        });
        expectRest(bench);
        // Nothing that is not picked stays in the output.
        EXPECT_NE(bench.state(), State::running());
    });
}

INSTANTIATE_TEST_SUITE_P(, Interleaving, testing::ValuesIn(scenarios()), [](const auto& each) {
    auto name = each.param.name;
    std::ranges::replace(name, ' ', '_');
    return name;
});

} // namespace
} // namespace kestrove

// What lies in the path of every frame and of every click: a post to the main loop, a task, an
// announcement.

#include "Async/Published.h"
#include "Async/Task.h"
#include "Async/TaskScope.h"
#include "Platform/Simulated/SimulatedMainLoop.h"

#include <benchmark/benchmark.h>

namespace kestrove {

namespace {

void postToTheMainLoop(benchmark::State& state) {
    SimulatedMainLoop loop;
    int ran = 0;
    for (auto _ : state) {
        loop.post([&ran] { ++ran; });
        loop.runUntilIdle();
    }
    benchmark::DoNotOptimize(ran);
}
BENCHMARK(postToTheMainLoop);

Task<int> answer(int value) {
    co_return value;
}

Task<void> addUp(int* sum, int depth) {
    for (int index = 0; index < depth; ++index)
        *sum += co_await answer(index);
}

void awaitTasks(benchmark::State& state) {
    SimulatedMainLoop loop;
    TaskScope scope(loop);
    int sum = 0;
    for (auto _ : state) {
        scope.launch(addUp(&sum, static_cast<int>(state.range(0))));
        loop.runUntilIdle();
    }
    benchmark::DoNotOptimize(sum);
}
BENCHMARK(awaitTasks)->Arg(1)->Arg(16);

void announceToSubscribers(benchmark::State& state) {
    Published<int> value(0);
    int told = 0;
    std::vector<Subscription> subscriptions;
    for (int index = 0; index < state.range(0); ++index)
        subscriptions.push_back(value.subscribe([&told](const int&) { ++told; }));
    int next = 0;
    for (auto _ : state)
        value.set(++next);
    benchmark::DoNotOptimize(told);
}
BENCHMARK(announceToSubscribers)->Arg(1)->Arg(8);

} // namespace

} // namespace kestrove

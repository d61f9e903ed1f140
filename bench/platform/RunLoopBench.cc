// The run loop's hot paths: posting and running work, and scheduling and
// cancelling delayed calls. Each figure has a baseline from the same run.
#include <benchmark/benchmark.h>

#include <deque>
#include <functional>
#include <memory>
#include <vector>

#include "platform/runloop/RunLoop.h"

namespace quillet::platform {
namespace {

// Baseline: the same number of std::function calls through a plain deque.
void BM_BaselineDequeOfFunctions(benchmark::State& state) {
  const auto count = static_cast<size_t>(state.range(0));
  for (auto _ : state) {
    std::deque<std::function<void()>> tasks;
    size_t ran = 0;
    for (size_t i = 0; i < count; ++i) tasks.emplace_back([&ran] { ++ran; });
    for (auto& task : tasks) task();
    benchmark::DoNotOptimize(ran);
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * count));
}
BENCHMARK(BM_BaselineDequeOfFunctions)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

void BM_RunLoopPostAndRun(benchmark::State& state) {
  const auto count = static_cast<size_t>(state.range(0));
  RunLoop loop(std::make_shared<ManualClock>());
  for (auto _ : state) {
    size_t ran = 0;
    for (size_t i = 0; i < count; ++i) loop.post([&ran] { ++ran; });
    loop.runPending();
    if (ran != count) state.SkipWithError("not every task ran");
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * count));
}
BENCHMARK(BM_RunLoopPostAndRun)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

// Schedules n delayed calls by target and operation, then cancels them all
// one by one: the total must grow as n log n, not n squared.
void BM_RunLoopScheduleAndCancelDelayedCalls(benchmark::State& state) {
  const auto count = static_cast<size_t>(state.range(0));
  RunLoop loop(std::make_shared<ManualClock>());
  std::vector<int> targets(count);
  for (auto _ : state) {
    for (size_t i = 0; i < count; ++i) {
      loop.performAfterDelay(&targets[i], "timeout", 1.0 + static_cast<double>(i % 977), [] {});
    }
    for (size_t i = 0; i < count; ++i) loop.cancelPreviousPerformRequests(&targets[i], "timeout");
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * count));
  state.SetComplexityN(static_cast<int64_t>(count));
}
BENCHMARK(BM_RunLoopScheduleAndCancelDelayedCalls)
    ->RangeMultiplier(10)
    ->Range(1'000, 100'000)
    ->Complexity()
    ->Unit(benchmark::kMillisecond);

// Schedules n timers and cancels them by handle, in reverse order.
void BM_RunLoopScheduleAndCancelByHandle(benchmark::State& state) {
  const auto count = static_cast<size_t>(state.range(0));
  RunLoop loop(std::make_shared<ManualClock>());
  std::vector<TimerId> ids(count);
  for (auto _ : state) {
    for (size_t i = 0; i < count; ++i) ids[i] = loop.schedule(1.0 + static_cast<double>(i % 977), [] {});
    for (size_t i = count; i-- > 0;) loop.cancel(ids[i]);
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * count));
  state.SetComplexityN(static_cast<int64_t>(count));
}
BENCHMARK(BM_RunLoopScheduleAndCancelByHandle)
    ->RangeMultiplier(10)
    ->Range(1'000, 100'000)
    ->Complexity()
    ->Unit(benchmark::kMillisecond);

// Fires 100,000 timers through advance() under a manual clock.
void BM_RunLoopAdvanceFiresTimers(benchmark::State& state) {
  const auto count = static_cast<size_t>(state.range(0));
  for (auto _ : state) {
    auto clock = std::make_shared<ManualClock>();
    RunLoop loop(clock);
    size_t fired = 0;
    for (size_t i = 0; i < count; ++i) loop.schedule(static_cast<double>(i) * 0.001, [&fired] { ++fired; });
    loop.advance(static_cast<double>(count));
    if (fired != count) state.SkipWithError("not every timer fired");
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * count));
}
BENCHMARK(BM_RunLoopAdvanceFiresTimers)->Arg(100'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quillet::platform

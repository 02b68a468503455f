// SPDX-License-Identifier: Apache-2.0
//
// Measures the time from an update of the state to the woken waiter, and compares it with a plain
// condition variable.
#include <benchmark/benchmark.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "fp_utils/fp_state_tracker.h"
#include "measure/ratios.h"
#include "measure/wakes.h"

namespace fp_bench {
namespace {

using android::fp_utils::fp_state_t;
using android::fp_utils::FpStateTracker;

constexpr unsigned kTimeoutMs = 60000;

void UpdateToWaiter(benchmark::State& state) {
  FpStateTracker tracker;
  std::atomic<uint32_t> seen = 0;
  std::atomic<bool> done = false;
  std::thread waiter([&] {
    for (uint32_t turn = 1; !done; ++turn) {
      (void)tracker.WaitForState(fp_state_t{turn}, kTimeoutMs);
      seen = turn;
    }
  });
  MeasureWakes(state, seen, [&tracker](uint32_t turn) { tracker.UpdateState(fp_state_t{turn}); });
  done = true;
  tracker.UpdateState(fp_state_t{seen + 1});
  waiter.join();
}

void BareConditionVariable(benchmark::State& state) {
  std::mutex mutex;
  std::condition_variable changed;
  uint32_t value = 0;
  std::atomic<uint32_t> seen = 0;
  std::atomic<bool> done = false;
  std::thread waiter([&] {
    for (uint32_t turn = 1; !done; ++turn) {
      std::unique_lock lock(mutex);
      changed.wait_for(lock, std::chrono::milliseconds(kTimeoutMs), [&] { return value == turn; });
      lock.unlock();
      seen = turn;
    }
  });
  const auto update = [&](uint32_t turn) {
    {
      const std::lock_guard lock(mutex);
      value = turn;
    }
    changed.notify_all();
  };
  MeasureWakes(state, seen, update);
  done = true;
  update(seen + 1);
  waiter.join();
}

BENCHMARK(UpdateToWaiter)->Iterations(5)->UseManualTime();
BENCHMARK(BareConditionVariable)->Iterations(5)->UseManualTime();

const bool kClaim = Claim("state_update_to_waiter", "UpdateToWaiter/iterations:5/manual_time",
                          "BareConditionVariable/iterations:5/manual_time", Goal::kAtMost, 1.3);

}  // namespace
}  // namespace fp_bench

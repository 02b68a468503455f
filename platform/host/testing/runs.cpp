// SPDX-License-Identifier: Apache-2.0
//
// Waits with a bound, and random tests.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <thread>

#include "fp_host/testing.h"

namespace fp_host {
namespace {

// Longer than several waits, so that a wait that fails is reported before the action counts as
// hung.
constexpr std::chrono::seconds kActionBound = 4 * kWaitBound;

}  // namespace

bool Eventually(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + kWaitBound;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) {
      return false;
    }
    std::this_thread::yield();
  }
  return true;
}

void RunBounded(const std::string& what, const std::function<void()>& action) {
  std::promise<void> done;
  std::thread thread([&] {
    const ::testing::ScopedTrace trace(__FILE__, __LINE__, what);
    action();
    done.set_value();
  });
  if (done.get_future().wait_for(kActionBound) != std::future_status::ready) {
    fprintf(stderr, "hangs: %s\n", what.c_str());
    abort();
  }
  thread.join();
}

void Gate::Pass() {
  arrived_ = true;
  Eventually([this] { return open_.load(); });
}

bool Gate::AwaitArrival() const {
  return Eventually([this] { return HasArrived(); });
}

int Share(int full) {
  const char* share = getenv("FP_TEST_SHARE");
  return share == nullptr ? full : std::max(1, static_cast<int>(full * atof(share)));
}

void RunSeeded(const char* what, int count, uint64_t first,
               const std::function<void(uint64_t seed)>& run) {
  const char* given = getenv("FP_TEST_SEED");
  first = given == nullptr ? first : strtoull(given, nullptr, 0);
  printf("%d %s, FP_TEST_SEED=%lu\n", count, what, first);
  for (uint64_t seed = first; count-- > 0 && !::testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE("FP_TEST_SEED=" + std::to_string(seed));
    run(seed);
  }
}

}  // namespace fp_host

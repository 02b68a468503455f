// SPDX-License-Identifier: Apache-2.0
#include "support/sensor_test.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>

namespace fp_test {
namespace {

// Longer than several waits, so that a wait that fails is reported before the action counts as
// hung.
constexpr std::chrono::seconds kActionBound = 4 * kPatience;

}  // namespace

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

void RepairSensorService() {
  fp_host::ClearSensorFaults();
  fp_host::RestartSensorService();
}

void SensorTest::TakeCalls() {
  mine_.clear();
  others_.clear();
  for (const fp_host::SensorCall& call : fp_host::TakeSensorCalls()) {
    Texts& texts = call.thread == std::this_thread::get_id() ? mine_ : others_;
    const bool repeated_wake =
        call.text.starts_with("ALooper_wake") && !texts.empty() && texts.back() == call.text;
    if (!repeated_wake) {
      texts.push_back(call.text);
    }
  }
}

Texts SensorTest::MyCalls() {
  TakeCalls();
  return mine_;
}

}  // namespace fp_test

// SPDX-License-Identifier: Apache-2.0
#include "press_counter.h"

#include <chrono>

namespace fp_service {

PressCounter::PressCounter() {
  listener_.long_press_sensor_callback_ = [this](const ASensorEvent& /*event*/) {
    const std::lock_guard lock(mutex_);
    ++count_;
    changed_.notify_all();
  };
  listener_.StartSampling(android::fp_utils::SensorListener::kLongPress);
}

void PressCounter::SystemServerDied() {
  listener_.OnSystemServerDeath();
  listener_.StartSampling(android::fp_utils::SensorListener::kLongPress);
}

int PressCounter::Get() {
  const std::lock_guard lock(mutex_);
  return count_;
}

void PressCounter::WaitFor(int count) {
  std::unique_lock lock(mutex_);
  changed_.wait_for(lock, std::chrono::seconds(1), [&] { return count_ >= count; });
}

}  // namespace fp_service

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <mutex>
#include <thread>

#include "fp_utils/thread_annotations.h"

namespace android::fp_utils {

// Waits for the lock, but gives up and returns false once `gives_up()` is true. The owner of a
// worker holds its lock while it waits for the worker to end. The worker, and any thread for which
// the worker may be waiting, would deadlock if it waited for that lock.
template <typename GivesUp>
[[nodiscard]] bool LockUnless(std::mutex& mutex, GivesUp gives_up) FP_TRY_ACQUIRE(true, mutex) {
  // Retries, because a wait for a std::mutex cannot be interrupted when `gives_up` becomes true.
  constexpr std::chrono::microseconds kRetryInterval{100};
  while (!mutex.try_lock()) {
    if (gives_up()) {
      return false;
    }
    std::this_thread::sleep_for(kRetryInterval);
  }
  return true;
}

}  // namespace android::fp_utils

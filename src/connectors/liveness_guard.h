// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <mutex>

#include "fp_utils/thread_annotations.h"

namespace android::fp_utils {

// Lets other threads call an object that may have been destroyed. They share the guard and make
// their calls through it. The destructor of the object calls Invalidate() first, which waits for a
// call that is running and prevents later ones.
class LivenessGuard {
 public:
  void Invalidate() {
    const std::lock_guard lock(mutex_);
    alive_ = false;
  }

  // Runs `call` unless the object is gone. The object is not destroyed during the call.
  template <typename Call>
  void RunIfAlive(Call call) {
    const std::lock_guard lock(mutex_);
    if (alive_) {
      call();
    }
  }

 private:
  std::mutex mutex_;
  bool alive_ FP_GUARDED_BY(mutex_) = true;
};

}  // namespace android::fp_utils

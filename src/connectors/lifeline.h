// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <mutex>

#include "fp_utils/thread_annotations.h"

namespace android::fp_utils {

// Stands between an object and those who may come for it after its end, on threads that it does not
// control. They share the lifeline and reach the object through it; the object cuts it first thing
// in its destructor, which waits for who is just inside.
class Lifeline {
 public:
  void Cut() {
    const std::lock_guard lock(mutex_);
    alive_ = false;
  }

  // Runs `use`, during which the object stays; not after its end.
  template <typename Use>
  void IfAlive(Use use) {
    const std::lock_guard lock(mutex_);
    if (alive_) {
      use();
    }
  }

 private:
  std::mutex mutex_;
  bool alive_ FP_GUARDED_BY(mutex_) = true;
};

}  // namespace android::fp_utils

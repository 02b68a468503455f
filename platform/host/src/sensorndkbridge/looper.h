// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <condition_variable>
#include <mutex>
#include <vector>

#include <android/looper.h>
#include <android/sensor.h>

// The bridge's looper. All threads share it, so they consume each other's wakes and events.
struct ALooper {
  // Returns an ALOOPER_POLL_ value. A negative timeout waits for ever.
  int Poll(int timeout_ms);

  // The wake is pending until a poll returns it. Several wakes before that count as one.
  void Wake();

  // Makes one poll return for a new event in the queue, even if the event is not read then.
  void SignalData(ASensorEventQueue* queue);
  void Forget(ASensorEventQueue* queue);

  // Wakes waiting polls so that they notice a fault.
  void Recheck();

  bool IsIdle(int waiting_threads);

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<ASensorEventQueue*> ready_;
  bool awoken_ = false;
  int waiting_ = 0;
};

namespace fp_host {

ALooper& TheLooper();

}  // namespace fp_host

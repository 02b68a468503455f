// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <condition_variable>
#include <mutex>
#include <vector>

#include <android/looper.h>
#include <android/sensor.h>

// The bridge's looper: one for all threads, which therefore take each other's wakes and events.
struct ALooper {
  // An ALOOPER_POLL_ value. Negative: waits for ever.
  int Poll(int timeout_ms);

  // Sticks until a poll returns it; several wakes until then are one.
  void Wake();

  // The queue has a new event. Signals again only for the next new one.
  void SignalData(ASensorEventQueue* queue);
  void Forget(ASensorEventQueue* queue);

  // Makes waiting polls look for a fault.
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

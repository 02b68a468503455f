// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "control/services.h"

namespace fp_host::ipc {

// What happens to calls into a service. Set by the controls, kept over restarts of the service.
struct CallPlan {
  std::mutex mutex;
  std::condition_variable changed;

  // Guarded by mutex.
  int calls = 0;       // made so far
  int held = 0;        // of those, how many wait behind the barrier
  int fatal_call = 0;  // the number of the call that ends the process; 0: none
  RemoteService::Death death = RemoteService::Death::kBefore;
  bool barrier = false;
  std::chrono::milliseconds delay{0};
};

// Another process as this one sees it. It answers calls until it dies.
class Process {
 public:
  explicit Process(std::shared_ptr<CallPlan> plan) : plan_(std::move(plan)) {}

  bool IsAlive() const;
  void Kill();

  // Runs `observer` when the process dies, on the thread that killed it; at once if it is dead.
  void OnDeath(std::function<void()> observer);

  // One call into the process, on the caller's thread. False if the process was dead, or died
  // before its answer was out.
  bool Call(const std::function<void()>& serve);

 private:
  // The fate of the call that was just made.
  enum class Fate { kServed, kLost, kDiesBefore, kDiesDuring, kDiesAfter };
  Fate Arrive();

  const std::shared_ptr<CallPlan> plan_;

  // Guarded by plan_->mutex, so that calls that wait there see the death.
  bool alive_ = true;
  std::vector<std::function<void()>> observers_;
};

}  // namespace fp_host::ipc

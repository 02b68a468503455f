// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "fp_host/services.h"

namespace fp_host::ipc {

// How calls into a service behave. Set by the controls and kept across restarts of the service.
struct CallPlan {
  std::mutex mutex;
  std::condition_variable changed;

  // Guarded by mutex.
  int calls = 0;       // made so far
  int held_calls = 0;  // of these, waiting for Release()
  int fatal_call = 0;  // number of the call at which the process dies; 0: none
  RemoteService::Death death = RemoteService::Death::kBeforeCall;
  bool holds_calls = false;  // between Hold() and Release()
  std::chrono::milliseconds delay{0};
};

// A simulated process. It answers calls until it dies.
class Process {
 public:
  explicit Process(std::shared_ptr<CallPlan> plan) : plan_(std::move(plan)) {}

  bool IsAlive() const;
  void Kill();

  // Runs `observer` when the process dies, on the thread that kills it. If the process is already
  // dead, runs it at once on the caller's thread.
  void OnDeath(std::function<void()> observer);

  // Runs `transaction` on the caller's thread as a call into the process. Returns false if the
  // process is dead or dies before it sends the reply.
  bool Call(const std::function<void()>& transaction);

 private:
  // What happens to one call according to the plan.
  enum class Outcome {
    kServed,
    kAlreadyDead,
    kDiesBeforeCall,
    kDiesBeforeAnswer,
    kDiesAfterAnswer
  };
  Outcome NextOutcome();

  const std::shared_ptr<CallPlan> plan_;

  // Guarded by plan_->mutex, so that the death wakes the calls that are held.
  bool alive_ = true;
  std::vector<std::function<void()>> observers_;
};

}  // namespace fp_host::ipc

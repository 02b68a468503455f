// SPDX-License-Identifier: Apache-2.0
#include "ipc/process.h"

#include <utility>

namespace fp_host::ipc {

bool Process::IsAlive() const {
  const std::lock_guard lock(plan_->mutex);
  return alive_;
}

void Process::Kill() {
  std::vector<std::function<void()>> observers;
  {
    const std::lock_guard lock(plan_->mutex);
    alive_ = false;
    observers.swap(observers_);
    plan_->changed.notify_all();
  }
  for (auto& observer : observers) {
    observer();
    observer = nullptr;  // drops its references before the next observer runs
  }
}

void Process::OnDeath(std::function<void()> observer) {
  {
    const std::lock_guard lock(plan_->mutex);
    if (alive_) {
      observers_.push_back(std::move(observer));
      return;
    }
  }
  observer();
}

bool Process::Call(const std::function<void()>& transaction) {
  const Outcome outcome = NextOutcome();
  if (outcome == Outcome::kDiesBeforeCall) {
    Kill();
  }
  if (outcome == Outcome::kDiesBeforeCall || outcome == Outcome::kAlreadyDead) {
    return false;
  }
  transaction();
  if (outcome == Outcome::kDiesBeforeAnswer) {
    Kill();
  }
  const bool answered = IsAlive();
  if (outcome == Outcome::kDiesAfterAnswer) {
    Kill();
  }
  return answered;
}

Process::Outcome Process::NextOutcome() {
  using Death = RemoteService::Death;
  CallPlan& plan = *plan_;
  std::unique_lock lock(plan.mutex);
  if (!alive_) {
    return Outcome::kAlreadyDead;
  }
  const bool fatal = ++plan.calls == plan.fatal_call;
  if (fatal && plan.death == Death::kBeforeCall) {
    return Outcome::kDiesBeforeCall;
  }
  ++plan.held_calls;
  plan.changed.notify_all();
  plan.changed.wait(lock, [&] { return !plan.holds_calls || !alive_; });
  --plan.held_calls;
  if (plan.delay.count() > 0) {
    plan.changed.wait_for(lock, plan.delay, [&] { return !alive_; });
  }
  if (!alive_) {
    return Outcome::kAlreadyDead;
  }
  if (!fatal) {
    return Outcome::kServed;
  }
  return plan.death == Death::kBeforeAnswer ? Outcome::kDiesBeforeAnswer
                                            : Outcome::kDiesAfterAnswer;
}

}  // namespace fp_host::ipc

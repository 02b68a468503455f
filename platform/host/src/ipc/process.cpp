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
  const Fate fate = DecideFate();
  if (fate == Fate::kDiesBeforeCall) {
    Kill();
  }
  if (fate == Fate::kDiesBeforeCall || fate == Fate::kAlreadyDead) {
    return false;
  }
  transaction();
  if (fate == Fate::kDiesBeforeAnswer) {
    Kill();
  }
  const bool answered = IsAlive();
  if (fate == Fate::kDiesAfterAnswer) {
    Kill();
  }
  return answered;
}

Process::Fate Process::DecideFate() {
  using Death = RemoteService::Death;
  CallPlan& plan = *plan_;
  std::unique_lock lock(plan.mutex);
  if (!alive_) {
    return Fate::kAlreadyDead;
  }
  const bool fatal = ++plan.calls == plan.fatal_call;
  if (fatal && plan.death == Death::kBeforeCall) {
    return Fate::kDiesBeforeCall;
  }
  ++plan.held_calls;
  plan.changed.notify_all();
  plan.changed.wait(lock, [&] { return !plan.holds_calls || !alive_; });
  --plan.held_calls;
  if (plan.delay.count() > 0) {
    plan.changed.wait_for(lock, plan.delay, [&] { return !alive_; });
  }
  if (!alive_) {
    return Fate::kAlreadyDead;
  }
  if (!fatal) {
    return Fate::kServed;
  }
  return plan.death == Death::kBeforeAnswer ? Fate::kDiesBeforeAnswer : Fate::kDiesAfterAnswer;
}

}  // namespace fp_host::ipc

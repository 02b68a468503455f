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

bool Process::Call(const std::function<void()>& serve) {
  const Fate fate = Arrive();
  if (fate == Fate::kDiesBefore) {
    Kill();
  }
  if (fate == Fate::kDiesBefore || fate == Fate::kLost) {
    return false;
  }
  serve();
  if (fate == Fate::kDiesDuring) {
    Kill();
  }
  const bool answered = IsAlive();
  if (fate == Fate::kDiesAfter) {
    Kill();
  }
  return answered;
}

Process::Fate Process::Arrive() {
  using Death = RemoteService::Death;
  CallPlan& plan = *plan_;
  std::unique_lock lock(plan.mutex);
  if (!alive_) {
    return Fate::kLost;
  }
  const bool fatal = ++plan.calls == plan.fatal_call;
  if (fatal && plan.death == Death::kBefore) {
    return Fate::kDiesBefore;
  }
  ++plan.held;
  plan.changed.notify_all();
  plan.changed.wait(lock, [&] { return !plan.barrier || !alive_; });
  --plan.held;
  if (plan.delay.count() > 0) {
    plan.changed.wait_for(lock, plan.delay, [&] { return !alive_; });
  }
  if (!alive_) {
    return Fate::kLost;
  }
  if (!fatal) {
    return Fate::kServed;
  }
  return plan.death == Death::kDuring ? Fate::kDiesDuring : Fate::kDiesAfter;
}

}  // namespace fp_host::ipc

// SPDX-License-Identifier: Apache-2.0
#include <utility>

#include "fp_host/services.h"
#include "ipc/pool.h"
#include "ipc/process.h"
#include "ipc/registry.h"

namespace fp_host {

using ipc::Process;
using ipc::Registry;

void SetServiceManagerFailing(bool failing) { Registry::Get().SetFailing(failing); }

void SetServiceWaitDelay(std::chrono::milliseconds delay) { Registry::Get().SetDelay(delay); }

bool WaitForServiceWaiters(int threads) { return Registry::Get().WaitForWaiters(threads); }

bool WaitUntilBinderPoolsIdle() {
  return ipc::BinderPool().WaitUntilIdle() && ipc::HidlPool().WaitUntilIdle();
}

RemoteService::RemoteService(std::string instance)
    : instance_(std::move(instance)), plan_(std::make_shared<ipc::CallPlan>()) {}

RemoteService::~RemoteService() {
  Undeclare();
  Kill();
}

void RemoteService::Declare() { Registry::Get().Declare(instance_, true); }

void RemoteService::Undeclare() { Registry::Get().Declare(instance_, false); }

void RemoteService::Start() { StartObject(&RemoteService::MakeService); }

void RemoteService::StartImpostor() { StartObject(&RemoteService::MakeImpostor); }

void RemoteService::StartObject(Maker make) {
  const std::lock_guard lock(mutex_);
  if (process_ != nullptr && process_->IsAlive()) {
    return;
  }
  process_ = std::make_shared<Process>(plan_);
  const std::shared_ptr<void> object = (this->*make)(process_);
  Registry::Get().Add(instance_, object, process_);
  // The first observer, so that clients that are notified later do not find the dead service.
  process_->OnDeath([instance = instance_, object] { Registry::Get().Remove(instance, object); });
}

void RemoteService::Kill() {
  std::shared_ptr<Process> process;
  {
    const std::lock_guard lock(mutex_);
    process = process_;
  }
  if (process != nullptr) {
    process->Kill();
  }
}

void RemoteService::Restart() {
  Kill();
  Start();
}

bool RemoteService::IsUp() const {
  const std::lock_guard lock(mutex_);
  return process_ != nullptr && process_->IsAlive();
}

void RemoteService::DieAtCall(int number, Death moment) {
  const std::lock_guard lock(plan_->mutex);
  plan_->fatal_call = number == 0 ? 0 : plan_->calls + number;
  plan_->death = moment;
}

void RemoteService::SetDelay(std::chrono::milliseconds delay) {
  const std::lock_guard lock(plan_->mutex);
  plan_->delay = delay;
}

void RemoteService::Hold() {
  const std::lock_guard lock(plan_->mutex);
  plan_->holds_calls = true;
}

void RemoteService::Release() {
  const std::lock_guard lock(plan_->mutex);
  plan_->holds_calls = false;
  plan_->changed.notify_all();
}

bool RemoteService::WaitForHeldCalls(int calls) const {
  std::unique_lock lock(plan_->mutex);
  return plan_->changed.wait_for(lock, std::chrono::seconds(10),
                                 [&] { return plan_->held_calls >= calls; });
}

void RemoteService::Repair() {
  DieAtCall(0, Death::kBeforeCall);
  SetDelay(std::chrono::milliseconds(0));
  Release();
  Accept();
  Start();
}

int RemoteService::CountCalls() const {
  const std::lock_guard lock(plan_->mutex);
  return plan_->calls;
}

}  // namespace fp_host

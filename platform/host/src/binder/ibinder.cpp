// SPDX-License-Identifier: Apache-2.0
#include "binder/ibinder.h"

#include <cstring>

#include "ipc/pool.h"

void AIBinder::DecStrong() {
  if (--strong_ == 0) {
    const std::shared_ptr<AIBinder> last = std::move(self_);
  }
}

ndk::SpAIBinder AIBinder::Promote(const std::weak_ptr<AIBinder>& weak) {
  const std::shared_ptr<AIBinder> binder = weak.lock();
  int32_t count = binder == nullptr ? 0 : binder->strong_.load();
  while (count > 0 && !binder->strong_.compare_exchange_weak(count, count + 1)) {
  }
  return ndk::SpAIBinder(count > 0 ? binder.get() : nullptr);
}

namespace fp_host::binder {

ndk::SpAIBinder LocalBinderOf(ndk::ICInterface& implementation, const char* descriptor,
                              std::weak_ptr<AIBinder>& known) {
  ndk::SpAIBinder binder = AIBinder::Promote(known);
  if (binder.get() == nullptr) {
    binder.set(new LocalBinder(implementation.ref<ndk::ICInterface>(), descriptor));
    known = binder.get()->GetWeak();
  }
  return binder;
}

ndk::SpAIBinder LocalBinder::GetProxy() {
  const std::lock_guard lock(mutex_);
  ndk::SpAIBinder proxy = Promote(proxy_);
  if (proxy.get() == nullptr) {
    proxy.set(new RemoteBinder(this));
    proxy_ = proxy.get()->GetWeak();
  }
  return proxy;
}

void LocalBinder::PostOneway(std::function<void()> call) {
  const std::lock_guard lock(mutex_);
  oneway_calls_.push_back(std::move(call));
  if (oneway_calls_.size() == 1) {
    IncStrong();
    ipc::BinderPool().Post([self = ndk::SpAIBinder(this)] {
      static_cast<LocalBinder*>(self.get())->RunOnewayCalls();
    });
  }
}

void LocalBinder::RunOnewayCalls() {
  std::unique_lock lock(mutex_);
  while (!oneway_calls_.empty()) {
    std::function<void()> call = std::move(oneway_calls_.front());
    lock.unlock();
    if (IsProcessAlive()) {
      call();
    }
    call = nullptr;  // destroys its captures without the lock
    lock.lock();
    oneway_calls_.pop_front();
  }
}

RemoteBinder::RemoteBinder(LocalBinder* target) : target_((target->IncStrong(), target)) {}

bool RemoteBinder::HasInterface(const char* descriptor) {
  if (!interface_known_ && !IsAlive()) {
    return false;
  }
  interface_known_ = true;
  return strcmp(GetTarget()->GetDescriptor(), descriptor) == 0;
}

bool RemoteBinder::IsAlive() {
  if (!GetTarget()->IsProcessAlive()) {
    known_dead_ = true;
  }
  return !known_dead_;
}

bool RemoteBinder::Call(const std::function<void()>& transaction) {
  const auto& process = GetTarget()->GetProcess();
  if (process == nullptr) {
    transaction();
    return true;
  }
  // An object that has died stays dead, so its process need not be asked again.
  if (known_dead_ || !process->Call(transaction)) {
    known_dead_ = true;
    return false;
  }
  return true;
}

binder_status_t RemoteBinder::Link(const std::shared_ptr<DeathLink>& link) {
  const std::lock_guard lock(mutex_);
  if (announced_) {
    return STATUS_DEAD_OBJECT;
  }
  links_.push_back(link);
  if (!std::exchange(watched_, true) && GetTarget()->GetProcess() != nullptr) {
    Watch();
  }
  return STATUS_OK;
}

void RemoteBinder::Watch() {
  GetTarget()->GetProcess()->OnDeath([weak = GetWeak()] {
    ipc::BinderPool().Post([weak] {
      const ndk::SpAIBinder binder = Promote(weak);
      if (binder.get() != nullptr) {
        binder.get()->AsRemote()->Announce();
      }
    });
  });
}

void RemoteBinder::Announce() {
  std::vector<std::weak_ptr<DeathLink>> links;
  {
    const std::lock_guard lock(mutex_);
    announced_ = true;
    known_dead_ = true;
    links.swap(links_);
  }
  for (const auto& weak_link : links) {
    if (const std::shared_ptr<DeathLink> link = weak_link.lock()) {
      link->on_died(link->cookie);
    }
  }
}

}  // namespace fp_host::binder

// SPDX-License-Identifier: Apache-2.0
#include "binder/ibinder.h"

#include <utility>

#include <android/log.h>

#include "binder/death.h"
#include "ipc/pool.h"

AIBinder::AIBinder() : weak_cell_(std::make_shared<fp_host::binder::WeakCell>()) {
  weak_cell_->binder = this;
}

void AIBinder::DecStrong() {
  if (strong_.fetch_sub(1) != 1) {
    return;
  }
  {
    const std::lock_guard lock(weak_cell_->mutex);
    weak_cell_->binder = nullptr;
  }
  delete this;
}

bool AIBinder::TryIncStrong() {
  int32_t count = strong_;
  while (count > 0 && !strong_.compare_exchange_weak(count, count + 1)) {
  }
  return count > 0;
}

namespace fp_host::binder {

ndk::SpAIBinder Promote(WeakCell& cell) {
  const std::lock_guard lock(cell.mutex);
  const bool is_held = cell.binder != nullptr && cell.binder->TryIncStrong();
  return ndk::SpAIBinder(is_held ? cell.binder : nullptr);
}

LocalBinder::LocalBinder(const AIBinder_Class* clazz, void* args)
    : class_(clazz), user_data_(clazz->on_create(args)) {}

LocalBinder::~LocalBinder() { class_->on_destroy(user_data_); }

binder_status_t LocalBinder::Dump(int fd, const char** args, uint32_t num_args) {
  return class_->on_dump == nullptr ? STATUS_OK : class_->on_dump(this, fd, args, num_args);
}

ndk::SpAIBinder LocalBinder::GetProxy() {
  const std::lock_guard lock(mutex_);
  ndk::SpAIBinder proxy = proxy_ == nullptr ? nullptr : Promote(*proxy_);
  if (proxy.get() == nullptr) {
    proxy.set(new RemoteBinder(this));
    proxy_ = proxy.get()->GetWeakCell();
  }
  return proxy;
}

void LocalBinder::PostOneway(std::function<void()> call) {
  const std::lock_guard lock(mutex_);
  oneway_calls_.push_back(std::move(call));
  if (oneway_calls_.size() == 1) {
    IncStrong();  // for the work that runs them
    ipc::BinderPool().Post([this] { RunOneOneway(); });
  }
}

void LocalBinder::RunOneOneway() {
  const ndk::SpAIBinder self(this);
  std::unique_lock lock(mutex_);
  {
    // Its place stays, so that no other work begins the next.
    const std::function<void()> call = std::move(oneway_calls_.front());
    lock.unlock();
    call();
  }
  lock.lock();
  oneway_calls_.pop_front();
  if (!oneway_calls_.empty()) {
    IncStrong();
    ipc::BinderPool().Post([this] { RunOneOneway(); });
  }
}

RemoteBinder::RemoteBinder(LocalBinder* target) : target_(target) { target_->IncStrong(); }

bool RemoteBinder::Associate(const AIBinder_Class* clazz) {
  if (class_ != nullptr) {
    return class_ == clazz;
  }
  // The object is asked for its interface, so it has to be there.
  if (!Ping() || target_->GetClass()->descriptor != clazz->descriptor) {
    return false;
  }
  class_ = clazz;
  return true;
}

bool RemoteBinder::Ping() {
  const auto& home = target_->GetHome();
  if (home != nullptr && !home->IsAlive()) {
    alive_ = false;
  }
  return alive_;
}

bool RemoteBinder::Call(const std::function<void()>& serve) {
  const auto& home = target_->GetHome();
  if (home == nullptr) {
    serve();
    return true;
  }
  // A dead object never revives, so what is known to be dead is not asked again.
  if (!alive_ || !home->Call(serve)) {
    alive_ = false;
    return false;
  }
  return true;
}

binder_status_t RemoteBinder::Link(const std::shared_ptr<DeathLink>& link) {
  if (!ipc::BinderPool().IsStarted()) {
    __android_log_print(ANDROID_LOG_WARN, "libbinder_ndk",
                        "Linking to death on %s, but no thread of the pool was started (yet?)",
                        target_->GetClass()->descriptor.c_str());
  }
  const std::lock_guard lock(mutex_);
  if (announced_) {
    return STATUS_DEAD_OBJECT;
  }
  DropExpiredLinks();
  links_.push_back(link);
  if (!std::exchange(watched_, true)) {
    Watch();
  }
  return STATUS_OK;
}

// A death without anyone linked is not announced, so that a later link still hears of it.
void RemoteBinder::Watch() {
  const auto& home = target_->GetHome();
  if (home == nullptr) {
    return;  // this process does not see its own death
  }
  home->OnDeath([cell = GetWeakCell()] {
    ipc::BinderPool().Post([cell] {
      const ndk::SpAIBinder binder = Promote(*cell);
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
    DropExpiredLinks();
    announced_ = !links_.empty();
    watched_ = announced_;
    links.swap(links_);
    alive_ = alive_ && !announced_;
  }
  for (const auto& weak_link : links) {
    if (const std::shared_ptr<DeathLink> link = weak_link.lock()) {
      link->Deliver();
    }
  }
}

binder_status_t RemoteBinder::Unlink(const DeathLink* link) {
  const std::lock_guard lock(mutex_);
  std::erase_if(links_, [link](const auto& other) { return other.lock().get() == link; });
  return announced_ ? STATUS_DEAD_OBJECT : STATUS_OK;
}

// Those whose recipient was deleted.
void RemoteBinder::DropExpiredLinks() {
  std::erase_if(links_, [](const auto& link) { return link.expired(); });
}

ndk::SpAIBinder CrossOver(const ndk::SpAIBinder& binder) {
  if (binder.get() == nullptr) {
    return nullptr;
  }
  if (LocalBinder* local = binder.get()->AsLocal()) {
    return local->GetProxy();
  }
  LocalBinder* target = binder.get()->AsRemote()->GetTarget();
  target->IncStrong();
  return ndk::SpAIBinder(target);
}

}  // namespace fp_host::binder

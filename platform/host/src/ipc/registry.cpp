// SPDX-License-Identifier: Apache-2.0
#include "ipc/registry.h"

#include <utility>

#include <android/log.h>

#include "device/misuse.h"

namespace fp_host::ipc {

// Never destroyed, because a thread may wait for a service while the process exits.
Registry& Registry::Get() {
  static auto* const registry = new Registry;
  return *registry;
}

void Registry::Declare(const std::string& name, bool declared) {
  const std::lock_guard lock(mutex_);
  if (declared) {
    declared_.insert(name);
  } else {
    declared_.erase(name);
  }
}

bool Registry::IsDeclared(const std::string& name) const {
  const std::lock_guard lock(mutex_);
  if (failing_) {
    __android_log_print(ANDROID_LOG_ERROR, "ServiceManager", "Failed to get isDeclared for %s",
                        name.c_str());
    return false;
  }
  return declared_.contains(name);
}

void Registry::Add(const std::string& name, std::shared_ptr<void> object,
                   const std::shared_ptr<Process>& process) {
  const std::lock_guard lock(mutex_);
  Entry& entry = objects_[name];
  const std::shared_ptr<Process> former = entry.process.lock();
  if (former != nullptr && former->IsAlive()) {
    AbortForMisuse("Two services are up under the name " + name + ".");
  }
  entry = {std::move(object), process};
  changed_.notify_all();
}

void Registry::Remove(const std::string& name, const std::shared_ptr<void>& object) {
  std::shared_ptr<void> removed;  // destroyed after the lock is released
  const std::lock_guard lock(mutex_);
  const auto entry = objects_.find(name);
  if (entry != objects_.end() && entry->second.object == object) {
    removed = std::move(entry->second.object);
    objects_.erase(entry);
  }
}

std::shared_ptr<void> Registry::Wait(const std::string& name) const {
  std::unique_lock lock(mutex_);
  ++waiting_;
  changed_.notify_all();
  changed_.wait_for(lock, delay_, [this] { return failing_; });
  const auto is_decided = [&] { return failing_ || Find(name) != nullptr; };
  while (!changed_.wait_for(lock, std::chrono::seconds(1), is_decided)) {
    __android_log_print(ANDROID_LOG_WARN, "ServiceManager", "Waited one second for %s",
                        name.c_str());
  }
  --waiting_;
  changed_.notify_all();
  return failing_ ? nullptr : Find(name);
}

std::shared_ptr<void> Registry::Find(const std::string& name) const {
  const auto entry = objects_.find(name);
  return entry == objects_.end() ? nullptr : entry->second.object;
}

void Registry::SetFailing(bool failing) {
  const std::lock_guard lock(mutex_);
  failing_ = failing;
  changed_.notify_all();
}

void Registry::SetDelay(std::chrono::milliseconds delay) {
  const std::lock_guard lock(mutex_);
  delay_ = delay;
}

bool Registry::WaitForWaiters(int threads) const {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, std::chrono::seconds(10), [&] { return waiting_ == threads; });
}

}  // namespace fp_host::ipc

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>

#include "ipc/process.h"

namespace fp_host::ipc {

// The device's manifest and service managers. One table holds the AIDL and the HIDL services, since
// their names cannot collide.
class Registry {
 public:
  static Registry& Get();

  void Declare(const std::string& name, bool declared);
  bool IsDeclared(const std::string& name) const;

  // Aborts if another object of that name is registered whose `process` is alive.
  void Add(const std::string& name, std::shared_ptr<void> object,
           const std::shared_ptr<Process>& process);
  // Removes the service if `object` is still registered under the name.
  void Remove(const std::string& name, const std::shared_ptr<void>& object);

  // Waits until a service of that name is registered, and logs every second. Null if the service
  // manager fails.
  std::shared_ptr<void> Wait(const std::string& name) const;

  // See fp_host/services.h.
  void SetFailing(bool failing);
  void SetDelay(std::chrono::milliseconds delay);
  bool WaitForWaiters(int threads) const;

 private:
  std::shared_ptr<void> Find(const std::string& name) const;  // with mutex_ held

  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;

  // Guarded by mutex_.
  std::set<std::string> declared_;
  struct Entry {
    std::shared_ptr<void> object;
    std::weak_ptr<Process> process;
  };
  std::map<std::string, Entry> objects_;
  bool failing_ = false;
  std::chrono::milliseconds delay_{0};
  mutable int waiting_ = 0;
};

}  // namespace fp_host::ipc

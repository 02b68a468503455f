// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>

namespace fp_host::ipc {

// The device's manifest and its service managers: the objects by name. One table holds AIDL and
// HIDL services, whose names differ in form.
class Registry {
 public:
  static Registry& Get();

  void Declare(const std::string& name, bool declared);
  bool IsDeclared(const std::string& name) const;

  void Add(const std::string& name, std::shared_ptr<void> object);
  // Removes the name if it still belongs to `object`.
  void Remove(const std::string& name, const std::shared_ptr<void>& object);

  // Waits until there is something by that name; null if the service manager fails. Logs every
  // second.
  std::shared_ptr<void> Wait(const std::string& name) const;

  // See control/services.h.
  void SetFailing(bool failing);
  void SetDelay(std::chrono::milliseconds delay);
  bool WaitForWaiting(int threads) const;

 private:
  std::shared_ptr<void> Find(const std::string& name) const;  // with mutex_ held

  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;

  // Guarded by mutex_.
  std::set<std::string> declared_;
  std::map<std::string, std::shared_ptr<void>> objects_;
  bool failing_ = false;
  std::chrono::milliseconds delay_{0};
  mutable int waiting_ = 0;
};

}  // namespace fp_host::ipc

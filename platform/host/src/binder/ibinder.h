// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include <android/binder_interface_utils.h>

#include "ipc/process.h"

namespace fp_host::binder {

class LocalBinder;
class RemoteBinder;

}  // namespace fp_host::binder

struct AIBinder {
 public:
  AIBinder(const AIBinder&) = delete;
  AIBinder& operator=(const AIBinder&) = delete;

  void IncStrong() { ++strong_; }
  void DecStrong();
  int32_t CountStrong() const { return strong_; }

  // Exactly one of the two returns non-null.
  virtual fp_host::binder::LocalBinder* AsLocal() { return nullptr; }
  virtual fp_host::binder::RemoteBinder* AsRemote() { return nullptr; }

  // The caller must hold a strong reference.
  std::weak_ptr<AIBinder> GetWeak() const { return self_; }
  // Returns a new strong reference, or null if the last one was dropped.
  static ndk::SpAIBinder Promote(const std::weak_ptr<AIBinder>& weak);

 protected:
  AIBinder() : self_(this, [](AIBinder* binder) { delete binder; }) {}
  virtual ~AIBinder() = default;

 private:
  std::atomic<int32_t> strong_ = 1;
  std::shared_ptr<AIBinder> self_;  // reset with the last strong reference
};

namespace fp_host::binder {

// One AIBinder_linkToDeath(). Owned by the recipient, and by a notification while it is delivered.
struct DeathLink {
  AIBinder_DeathRecipient_onBinderDied on_died;
  void* cookie;
};

// An object implemented in this program. It lives in this process or in a simulated one.
class LocalBinder : public AIBinder {
 public:
  LocalBinder(std::shared_ptr<ndk::ICInterface> implementation, const char* descriptor)
      : implementation_(std::move(implementation)), descriptor_(descriptor) {}

  LocalBinder* AsLocal() override { return this; }
  const std::shared_ptr<ndk::ICInterface>& GetImplementation() const { return implementation_; }
  const char* GetDescriptor() const { return descriptor_; }

  // The proxy for other processes. There is one at a time, shared by all holders.
  ndk::SpAIBinder GetProxy();

  // The simulated process of the object, or null for this one. Set before the first GetProxy().
  void SetProcess(std::shared_ptr<ipc::Process> process) { process_ = std::move(process); }
  const std::shared_ptr<ipc::Process>& GetProcess() const { return process_; }
  bool IsProcessAlive() const { return process_ == nullptr || process_->IsAlive(); }

  // Runs one-way calls one after the other on a thread of the binder pool.
  void PostOneway(std::function<void()> call);

 private:
  void RunOnewayCalls();

  // Constant after construction.
  const std::shared_ptr<ndk::ICInterface> implementation_;
  const char* const descriptor_;
  std::shared_ptr<ipc::Process> process_;

  std::mutex mutex_;

  // Guarded by mutex_.
  std::weak_ptr<AIBinder> proxy_;
  std::deque<std::function<void()>> oneway_calls_;  // the first one is running
};

class RemoteBinder : public AIBinder {
 public:
  explicit RemoteBinder(LocalBinder* target);

  RemoteBinder* AsRemote() override { return this; }
  LocalBinder* GetTarget() const { return target_.get()->AsLocal(); }

  // Whether the object has this interface. The first call asks the object and is false if it is
  // dead.
  bool HasInterface(const char* descriptor);
  // Runs `transaction` as a call into the object's process. False if that died before it sent the
  // reply.
  bool Call(const std::function<void()>& transaction);
  // False if the object's process is dead.
  bool IsAlive();

  binder_status_t Link(const std::shared_ptr<DeathLink>& link);

 private:
  void Watch();
  void Announce();

  const ndk::SpAIBinder target_;
  std::atomic<bool> interface_known_ = false;
  std::atomic<bool> known_dead_ = false;

  std::mutex mutex_;

  // Guarded by mutex_.
  bool watched_ = false;    // Watch() was called
  bool announced_ = false;  // the links were notified
  std::vector<std::weak_ptr<DeathLink>> links_;
};

}  // namespace fp_host::binder

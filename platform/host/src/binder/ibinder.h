// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <android/binder_auto_utils.h>
#include <android/binder_ibinder.h>

#include "ipc/process.h"

struct AIBinder_Class {
  const std::string descriptor;
  const AIBinder_Class_onCreate on_create;
  const AIBinder_Class_onDestroy on_destroy;
  AIBinder_onDump on_dump = nullptr;  // set before objects of the class are made
};

namespace fp_host::binder {

class LocalBinder;
class RemoteBinder;
class DeathLink;

// Where weak references look: outlives the object.
struct WeakCell {
  std::mutex mutex;
  AIBinder* binder;  // Guarded by mutex; null once the object is going.
};
ndk::SpAIBinder Promote(WeakCell& cell);

}  // namespace fp_host::binder

struct AIBinder {
 public:
  AIBinder(const AIBinder&) = delete;
  AIBinder& operator=(const AIBinder&) = delete;

  void IncStrong() { strong_.fetch_add(1); }
  void DecStrong();
  int32_t CountStrong() const { return strong_; }
  const std::shared_ptr<fp_host::binder::WeakCell>& GetWeakCell() const { return weak_cell_; }

  virtual const AIBinder_Class* GetClass() const = 0;
  virtual bool Associate(const AIBinder_Class* clazz) = 0;
  // At most one of the two is not null.
  virtual fp_host::binder::LocalBinder* AsLocal() { return nullptr; }
  virtual fp_host::binder::RemoteBinder* AsRemote() { return nullptr; }

 protected:
  AIBinder();
  virtual ~AIBinder() = default;

 private:
  friend ndk::SpAIBinder fp_host::binder::Promote(fp_host::binder::WeakCell& cell);

  bool TryIncStrong();

  std::atomic<int32_t> strong_ = 1;
  const std::shared_ptr<fp_host::binder::WeakCell> weak_cell_;
};

namespace fp_host::binder {

// An object whose implementation is in this program, as one of this process or, by a lever, of a
// simulated other one.
class LocalBinder : public AIBinder {
 public:
  LocalBinder(const AIBinder_Class* clazz, void* args);
  ~LocalBinder() override;

  const AIBinder_Class* GetClass() const override { return class_; }
  bool Associate(const AIBinder_Class* clazz) override { return clazz == class_; }
  LocalBinder* AsLocal() override { return this; }
  void* GetUserData() const { return user_data_; }
  binder_status_t Dump(int fd, const char** args, uint32_t num_args);

  // The proxy through which processes other than the object's own see it: one while it is held.
  ndk::SpAIBinder GetProxy();

  // The process that the object is in; null for this one. Set before the first proxy is made.
  void SetHome(std::shared_ptr<ipc::Process> home) { home_ = std::move(home); }
  const std::shared_ptr<ipc::Process>& GetHome() const { return home_; }

  // Runs oneway calls one after the other on the threads of the binder pool.
  void PostOneway(std::function<void()> call);

 private:
  void RunOneOneway();

  // Constant after construction.
  const AIBinder_Class* const class_;
  void* const user_data_;
  std::shared_ptr<ipc::Process> home_;

  std::mutex mutex_;

  // Guarded by mutex_.
  std::shared_ptr<WeakCell> proxy_;
  std::deque<std::function<void()>> oneway_calls_;
};

// A proxy.
class RemoteBinder : public AIBinder {
 public:
  // Takes a reference to `target`.
  explicit RemoteBinder(LocalBinder* target);
  ~RemoteBinder() override { target_->DecStrong(); }

  const AIBinder_Class* GetClass() const override { return class_; }
  bool Associate(const AIBinder_Class* clazz) override;
  RemoteBinder* AsRemote() override { return this; }
  LocalBinder* GetTarget() const { return target_; }

  bool IsAlive() const { return alive_; }
  // Asks the object's process.
  bool Ping();
  // False if the object's process died before its answer was out.
  bool Call(const std::function<void()>& serve);

  binder_status_t Link(const std::shared_ptr<DeathLink>& link);
  binder_status_t Unlink(const DeathLink* link);

 private:
  void Watch();  // with mutex_ held
  void Announce();
  void DropExpiredLinks();  // with mutex_ held

  LocalBinder* const target_;
  std::atomic<const AIBinder_Class*> class_ = nullptr;
  std::atomic<bool> alive_ = true;  // as far as known

  std::mutex mutex_;

  // Guarded by mutex_.
  bool watched_ = false;    // the death will be announced
  bool announced_ = false;  // it has been
  std::vector<std::weak_ptr<DeathLink>> links_;
};

// The same object as seen from the other side of a call: a proxy of what is local to the sender,
// the object itself where the proxy goes home. Null stays null.
ndk::SpAIBinder CrossOver(const ndk::SpAIBinder& binder);

}  // namespace fp_host::binder

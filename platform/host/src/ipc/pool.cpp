// SPDX-License-Identifier: Apache-2.0
#include "ipc/pool.h"

#include <chrono>
#include <thread>
#include <utility>

#include <android/log.h>

#include "device/misuse.h"

namespace fp_host::ipc {
namespace {

thread_local bool is_pool_thread = false;

}  // namespace

void Pool::Start() {
  const std::lock_guard lock(mutex_);
  if (threads_ == 0) {
    AddThread();
  }
}

void Pool::SetMaxMoreThreads(uint32_t count) {
  const std::lock_guard lock(mutex_);
  if (threads_ > 0 && count < max_more_threads_) {
    AbortForMisuse("The binder thread pool cannot shrink after it was started.");
  }
  max_more_threads_ = count;
}

void Pool::Post(std::function<void()> work) {
  const std::lock_guard lock(mutex_);
  work_.push_back(std::move(work));
  if (threads_ > 0 && idle_ < work_.size() && threads_ < 1 + max_more_threads_) {
    AddThread();
  }
  work_arrived_.notify_one();
}

void Pool::WarnUnlessStarted(const char* what) const {
  const std::lock_guard lock(mutex_);
  if (threads_ == 0) {
    __android_log_print(ANDROID_LOG_WARN, "fp_host",
                        "%s will not arrive before ABinderProcess_startThreadPool().", what);
  }
}

bool Pool::WaitUntilIdle() const {
  if (is_pool_thread) {
    AbortForMisuse("A thread of the binder pool would wait for itself to be idle.");
  }
  std::unique_lock lock(mutex_);
  return became_idle_.wait_for(lock, std::chrono::seconds(10),
                               [this] { return work_.empty() && idle_ == threads_; });
}

void Pool::AddThread() {
  ++threads_;
  ++idle_;
  std::thread([this] { RunThread(); }).detach();
}

void Pool::RunThread() {
  is_pool_thread = true;
  std::unique_lock lock(mutex_);
  while (true) {
    work_arrived_.wait(lock, [this] { return !work_.empty(); });
    std::function<void()> work = std::move(work_.front());
    work_.pop_front();
    --idle_;
    lock.unlock();
    work();
    work = nullptr;  // destroys its captures without the lock
    lock.lock();
    ++idle_;
    became_idle_.notify_all();
  }
}

Pool& BinderPool() {
  static auto* const pool = new Pool(15);
  return *pool;
}

Pool& HidlPool() {
  static auto* const pool = new Pool(0);
  return *pool;
}

}  // namespace fp_host::ipc

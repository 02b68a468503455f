// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>

namespace fp_host::ipc {

// The threads of this process that run incoming calls and death notifications. Work that arrives
// before Start() is queued.
class Pool {
 public:
  explicit Pool(uint32_t max_more_threads) : max_more_threads_(max_more_threads) {}

  // Starts the first thread. When all threads are busy, new work starts another, up to the limit.
  void Start();
  // Logs a warning while there are no threads, since `what` arrives only once there are.
  void WarnUnlessStarted(const char* what) const;
  // Aborts for fewer threads than before once the pool is started, as the platform does.
  void SetMaxMoreThreads(uint32_t count);

  void Post(std::function<void()> work);

  // Waits, within a bound, until no work is queued or running. False on timeout. Aborts on a thread
  // of a pool, which would wait for itself.
  bool WaitUntilIdle() const;

 private:
  void AddThread();  // with mutex_ held
  void RunThread();

  mutable std::mutex mutex_;
  std::condition_variable work_arrived_;
  mutable std::condition_variable became_idle_;

  // Guarded by mutex_.
  std::deque<std::function<void()>> work_;
  uint32_t max_more_threads_;
  uint32_t threads_ = 0;
  uint32_t idle_ = 0;
};

// One pool for each transport. Their threads run until the process ends.
Pool& BinderPool();
Pool& HidlPool();

}  // namespace fp_host::ipc

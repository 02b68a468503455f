// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>

namespace fp_host::ipc {

// The threads of this process that run what arrives from other processes. Work that arrives while
// no thread was started waits for the first.
class Pool {
 public:
  explicit Pool(uint32_t max_more_threads) : max_more_threads_(max_more_threads) {}

  // Starts the first thread. More join it when work finds all busy, up to the limit.
  void Start();
  void SetMaxMoreThreads(uint32_t count);

  void Post(std::function<void()> work);

  // Waits, within a bound, until nothing is left to do. False if it did not come to that.
  bool WaitUntilIdle() const;

 private:
  void AddThread();  // with mutex_ held
  void Serve();

  mutable std::mutex mutex_;
  std::condition_variable work_arrived_;
  mutable std::condition_variable became_idle_;

  // Guarded by mutex_.
  std::deque<std::function<void()>> work_;
  uint32_t max_more_threads_;
  uint32_t threads_ = 0;
  uint32_t idle_ = 0;
};

// The two transports have a pool each. Their threads outlive main(): they end with the process.
Pool& BinderPool();
Pool& HidlPool();

}  // namespace fp_host::ipc

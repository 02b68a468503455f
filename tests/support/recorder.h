// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace fp_test {

// The bound of every wait, longer than any passing test needs under a sanitizer.
constexpr std::chrono::seconds kPatience(30);

// Collects what callbacks on other threads deliver, so that a test can wait for it.
template <typename Item>
class Recorder {
 public:
  void Add(Item item) {
    {
      const std::lock_guard lock(mutex_);
      items_.push_back(std::move(item));
    }
    added_.notify_all();
  }

  // Waits for `count` items and takes all. Returns fewer if the wait times out.
  std::vector<Item> Take(size_t count) {
    std::unique_lock lock(mutex_);
    added_.wait_for(lock, kPatience, [&] { return items_.size() >= count; });
    return std::exchange(items_, {});
  }

  size_t Count() const {
    const std::lock_guard lock(mutex_);
    return items_.size();
  }

 private:
  mutable std::mutex mutex_;
  std::condition_variable added_;
  std::vector<Item> items_;
};

// Polls until `condition` holds. False on timeout.
inline bool Eventually(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) {
      return false;
    }
    std::this_thread::yield();
  }
  return true;
}

}  // namespace fp_test

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <android/log.h>

#include "fp_host/clock.h"
#include "fp_host/device.h"
#include "fp_host/faults.h"
#include "fp_host/sensor_service.h"
#include "fp_host/services.h"

// What GoogleTests of services need beside the other controls: fixtures, the log, waits with a
// bound, and tables of faults. A test may derive from both fixtures. Link fp_host::testing
// (pkg-config: fp_host-testing), which also has a main().
//
// Threading:  fixtures belong to the test's thread; any thread may call anything else.

namespace fp_host {

// A freshly booted simulated device for each test. The destructor removes the device with its
// files, removes all faults of system calls and lets the wall clock run. Paths are the device's.
class DeviceTest : public virtual ::testing::Test {
 protected:
  ~DeviceTest() override;

  static bool Exists(const std::string& path);
  // Empty if there is no such file.
  static std::string ReadFile(const std::string& path);
  // Fails the test if the file cannot be written, for example because its folder is missing.
  static void WriteFile(const std::string& path, const std::string& content);
  static void Remove(const std::string& path);
  static unsigned ModeOf(const std::string& path);

  const ScratchDevice device_{"fp_device"};
};

// Sets a property of this process. At the end it has the value that it had; one that was not set is
// empty then, which readers with a default take for unset.
class ScopedProperty : public Scoped {
 public:
  ScopedProperty(std::string name, const std::string& value);
  ~ScopedProperty();

 private:
  const std::string name_, former_;
};

// Returns what `dump` writes to `fd`.
std::string DumpText(const std::function<void(int fd)>& dump);

// Open file descriptors and threads of this process.
long CountDescriptors();
long CountThreads();

// --- The log. liblog records its lines here instead of printing them, from the program's start.

struct LogLine {
  int priority;
  std::string tag;
  std::string message;

  bool operator==(const LogLine&) const = default;
};
std::ostream& operator<<(std::ostream& out, const LogLine& line);

inline LogLine Debug(std::string tag, std::string message) {
  return {ANDROID_LOG_DEBUG, std::move(tag), std::move(message)};
}
inline LogLine Info(std::string tag, std::string message) {
  return {ANDROID_LOG_INFO, std::move(tag), std::move(message)};
}
inline LogLine Warn(std::string tag, std::string message) {
  return {ANDROID_LOG_WARN, std::move(tag), std::move(message)};
}
inline LogLine Error(std::string tag, std::string message) {
  return {ANDROID_LOG_ERROR, std::move(tag), std::move(message)};
}

// Starts recording. The constant calls it in every program that includes this header, and so links
// the recorder.
bool RecordLog();
[[maybe_unused]] inline const bool kIsLogRecorded = RecordLog();

// The lines that were logged since the last call, in order; at first, also those of earlier tests
// of the program. With a tag, only lines with this tag: the others are lost.
std::vector<LogLine> TakeLog();
std::vector<LogLine> TakeLog(const std::string& tag);

// Adds a line of the test itself.
void AddLogLine(LogLine line);

// Expects that exactly these lines, the library's included, were logged since the last TakeLog().
#define EXPECT_LOG(...) EXPECT_EQ((std::vector<fp_host::LogLine>{__VA_ARGS__}), fp_host::TakeLog())

// The number of lines of `log` whose message contains `text`.
size_t CountLinesWith(const std::vector<LogLine>& log, const std::string& text);

// Drops lines instead of recording them, for tests that log millions.
void MuteLog(bool mute);

// --- Threads and time

// The bound of Eventually(), Recorder and Gate, longer than any passing test needs under a
// sanitizer.
constexpr std::chrono::seconds kWaitBound(30);

// Polls until `condition` holds. False on timeout.
bool Eventually(const std::function<bool()>& condition);

// Runs `action` on a thread of its own and aborts if it has not returned after two minutes. Its
// failures are reported with `what`.
void RunBounded(const std::string& what, const std::function<void()>& action);

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
    added_.wait_for(lock, kWaitBound, [&] { return items_.size() >= count; });
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

// Holds threads at Pass() until it is opened, for at most kWaitBound.
class Gate {
 public:
  void Pass();
  bool HasArrived() const { return arrived_; }
  bool AwaitArrival() const;
  void Open() { open_ = true; }

 private:
  std::atomic<bool> arrived_ = false;
  std::atomic<bool> open_ = false;
};

// --- Random tests

// `full` times FP_TEST_SHARE of the environment (1 if unset), but at least 1. The sanitizer lanes
// set less than 1 to keep random tests short.
int Share(int full);

// Runs `run` with `count` consecutive seeds until a test fails. FP_TEST_SEED of the environment
// replaces `first`; failures print the value that repeats them.
void RunSeeded(const char* what, int count, uint64_t first,
               const std::function<void(uint64_t seed)>& run);

// --- Faults of HALs

// What a client sees of a call that meets a fault.
enum HalFaultEffect : unsigned {
  kAnswered = 1,  // the client gets the answer that a working HAL gives
  kServed = 2,    // the HAL does the work, whether it answers or not
  kDead = 4,      // the process that the client is connected to is dead afterwards
};

// A fault of a HAL before or during the next call.
struct HalFault {
  const char* name;
  std::function<void(RemoteService&)> apply;
  unsigned effects;

  bool Has(HalFaultEffect effect) const { return (effects & effect) != 0; }
};

// The faults that every HAL may have, followed by those of a test.
std::vector<HalFault> HalFaults(std::vector<HalFault> others);

// --- Sensors

// Records the calls to the sensor service. The destructor ends the recording, removes faults and
// hooks, and starts the service if it is down.
class SensorTest : public virtual ::testing::Test {
 protected:
  using Texts = std::vector<std::string>;

  SensorTest() { RecordSensorCalls(true); }
  ~SensorTest() override;

  // Takes the calls since the last time: MyCalls() are those of this thread, Others() those of all
  // other threads. Repeated wakes count as one, since their number depends on scheduling.
  void TakeCalls();
  const Texts& Others() const { return others_; }
  Texts MyCalls();

 private:
  Texts mine_, others_;
};

}  // namespace fp_host

// SPDX-License-Identifier: Apache-2.0
#include "device/faults.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <iterator>

#include "device/misuse.h"
#include "fp_host/faults.h"

namespace fp_host {
namespace {

constexpr const char* kNames[] = {"open",  "fopen", "mkdir", "unlink", "rename", "read",
                                  "write", "ioctl", "poll",  "pipe",   "fcntl"};
constexpr size_t kCalls = std::size(kNames);
constexpr int kTrackedDescriptors = 65536;

// Only constant-initialised atomics: interposed calls come from any thread, and before and after
// main().
struct Setting {
  std::atomic<bool> set = false;
  std::atomic<int> counted = 0;
  std::atomic<int> first_call = 0;
  std::atomic<int> calls = 0;
  std::atomic<int> error = 0;
  std::atomic<ssize_t> shorten_to = -1;
};
std::array<Setting, kCalls> settings;
std::array<std::atomic<bool>, kTrackedDescriptors> tracked;

Setting& Of(Call call) { return settings[static_cast<size_t>(call)]; }

Setting& Of(const std::string& function) {
  for (size_t i = 0; i < kCalls; ++i) {
    if (function == kNames[i]) {
      return settings[i];
    }
  }
  AbortForMisuse("There are no faults for " + function + "().");
}

}  // namespace

void SetFault(const Fault& fault) {
  Setting& setting = Of(fault.function);
  if (fault.first_call < 1 || (fault.calls < 1 && fault.calls != Fault::kForever)) {
    AbortForMisuse("A fault needs a first call, counted from 1, and a number of calls.");
  }
  const bool transfers = fault.function == "read" || fault.function == "write";
  if (fault.shorten_to < 0 ? fault.error == 0 : !transfers) {
    AbortForMisuse("A fault needs an error, or a length to which it shortens read() or write().");
  }
  setting.set = false;
  setting.counted = 0;
  setting.first_call = fault.first_call;
  setting.calls = fault.calls;
  setting.error = fault.error;
  setting.shorten_to = fault.shorten_to;
  setting.set = true;
}

void ClearFault(const std::string& function) { Of(function).set = false; }

void ClearFaults() {
  for (Setting& setting : settings) {
    setting.set = false;
  }
}

int CallsSinceFaultSet(const std::string& function) { return Of(function).counted; }

FaultResult CheckFault(Call call) {
  Setting& setting = Of(call);
  if (!setting.set) {
    return {};
  }
  const int number = ++setting.counted;
  if (number < setting.first_call ||
      (setting.calls != Fault::kForever && number >= setting.first_call + setting.calls)) {
    return {};
  }
  if (setting.shorten_to >= 0) {
    return {.fails = false, .limit = static_cast<size_t>(setting.shorten_to)};
  }
  errno = setting.error;
  return {.fails = true};
}

bool AreTransfersFaulty() { return Of(Call::kRead).set || Of(Call::kWrite).set; }

void Track(int fd) {
  if (fd >= 0 && fd < kTrackedDescriptors) {
    tracked[static_cast<size_t>(fd)] = true;
  }
}

void Untrack(int fd) {
  if (fd >= 0 && fd < kTrackedDescriptors) {
    tracked[static_cast<size_t>(fd)] = false;
  }
}

bool IsTracked(int fd) {
  return fd >= 0 && fd < kTrackedDescriptors && tracked[static_cast<size_t>(fd)];
}

}  // namespace fp_host

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace fp_host {

// One record as the touch controller reports it.
struct TouchRecord {
  uint64_t stamp = 0;
  std::array<uint16_t, 20> coords = {};
  std::array<int32_t, 2> signed_coords = {};
  int32_t angle = 0;  // 8192 is pi
  int32_t id = 0;
  uint32_t type = 0;
  uint32_t info = 0;
  uint8_t valid = 1;
  std::array<uint8_t, 10> flags = {};
};

// A buffer of records as one read of the device returns it.
std::string EncodeTouchRecords(const std::vector<TouchRecord>& records);

// The simulated touch-handler device. A program that is linked with the simulated device opens the
// node by its path and gets a real descriptor, which it polls, reads and closes. Without an object
// of this class there is no such node. Only one may exist at a time: a second one aborts.
//
// Threading:  any thread may call any operation, also while the device is in use.
// Ownership:  the users of the device own their descriptors. Those that are open when the object is
//             destroyed have lost their device: reads return end of file.
// Errors:     faults of open, read, ioctl and poll are set with fp_host/faults.h.
class TouchNode {
 public:
  struct Request {
    unsigned long number;
    std::vector<uint8_t> argument;  // 32 bytes; empty if the argument was null

    bool operator==(const Request&) const = default;
  };

  explicit TouchNode(const std::string& path = "/dev/fth_fd");
  ~TouchNode();
  TouchNode(const TouchNode&) = delete;
  TouchNode& operator=(const TouchNode&) = delete;

  // Sends one buffer, which one read returns. Blocks while the socket's buffer is full, so the
  // reader has to run on another thread or process. False once the device is gone.
  bool Push(const std::vector<TouchRecord>& records);
  bool PushBytes(const std::string& buffer);

  // Like PushBytes(), but drops the buffer where that would block.
  bool TryPushBytes(const std::string& buffer);

  // The device goes away while it is open: reads return what was sent before, then end of file;
  // polls report a hang-up, and Push() under way returns false. After Reconnect() the same
  // descriptors work again, without what was not read.
  void HangUp();
  void Reconnect();

  // Sets what ioctl() returns for later requests with this number; 0, the default, is success.
  void SetRequestResult(unsigned long number, int result);

  // The requests since the last TakeRequests(), in order; at most the newest 1,000.
  std::vector<Request> TakeRequests();

  // The descriptors of this node that are open in this process.
  int CountOpenDescriptors() const;
};

}  // namespace fp_host

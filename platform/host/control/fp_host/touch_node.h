// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <functional>
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

// The panel on which a recording is played, in device units. If either size is 0, the values of the
// recording are taken as they are.
struct TouchPanel {
  uint16_t width = 0;
  uint16_t height = 0;
};

enum class Pace { kRecorded, kAtOnce };

// Takes the records of one report; false ends the playback.
using PushTouchRecords = std::function<bool(const std::vector<TouchRecord>& records)>;

// Plays a recording of a touch screen (multi-touch protocol B): the text of `getevent -lt`, which
// `getevent -lp` may precede, or an evemu file. Each report of the recording becomes one of the
// device, with a record for each contact that changed: `coords` begins with x, y, and the lengths
// of the major and the minor axis; `angle` is the orientation; `id` is the slot; `type` is 0 for a
// contact that begins, 1 for one that moves, 2 for one that ends; `stamp` is the recorded time in
// microseconds. Positions are scaled from the ranges of the recording's axes to the panel, lengths
// by the mean of both scales. A contact that was down before the recording began is left out, and
// one that is down at its end is not lifted.
//
// Blocking:   sleeps until each report is due, unless the pace is kAtOnce.
// Errors:     returns an empty text, or file, line and reason. Nothing is pushed from a recording
//             with an error. A line has at most 1,024 bytes, a recording at most 250,000 records,
//             and it lasts at most a day.
std::string PlayTouchRecording(const std::string& path, const TouchPanel& panel, Pace pace,
                               const PushTouchRecords& push);

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
    std::vector<uint8_t> argument;  // up to 32 bytes that could be read there

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

  // Plays a recording on this device, see PlayTouchRecording().
  std::string Play(const std::string& path, const TouchPanel& panel = {},
                   Pace pace = Pace::kRecorded);

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

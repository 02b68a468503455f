// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

// One line of a recording of an input device: text of `getevent -lt`, which `getevent -lp` may
// precede, or an evemu file.

namespace fp_host {

// Types and codes of the kernel's input events, as far as they matter to touches.
enum InputType : uint16_t { kSyn = 0, kAbs = 3 };
enum SynCode : uint16_t { kSynReport = 0, kSynMtReport = 2, kSynDropped = 3 };
enum AbsCode : uint16_t {
  kMtSlot = 0x2f,
  kMtTouchMajor = 0x30,
  kMtTouchMinor = 0x31,
  kMtOrientation = 0x34,
  kMtPositionX = 0x35,
  kMtPositionY = 0x36,
  kMtTrackingId = 0x39,
  kMtLast = 0x3d,
};

struct InputEvent {
  int64_t time_us = 0;
  std::string_view device = {};  // the node's path; empty if the line names none
  uint16_t type = 0;
  uint16_t code = 0;
  int32_t value = 0;
};
struct InputDevice {  // the lines that follow describe this device
  std::string_view path;
};
struct InputAxis {
  uint16_t code;
  double min;  // whole numbers of 32 bits
  double max;
};
struct Malformed {
  std::string reason;
};
// A line that says nothing about touches is std::monostate. Views point into the line.
using RecordingLine = std::variant<std::monostate, InputEvent, InputDevice, InputAxis, Malformed>;

enum class RecordingFormat { kUnknown, kGetevent, kEvemu };

// The format of a recording that begins with this line; unknown if it is empty.
RecordingFormat FormatOf(std::string_view first_line);

RecordingLine ParseRecordingLine(std::string_view line, RecordingFormat format);

}  // namespace fp_host

// SPDX-License-Identifier: Apache-2.0
#include "device/recording_line.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <vector>

namespace fp_host {
namespace {

constexpr char kSpace[] = " \t\r";
constexpr int64_t kUsPerSecond = 1000000;

// A type or code that says nothing about touches.
constexpr uint16_t kOther = std::numeric_limits<uint16_t>::max();

// The codes that a playback uses.
constexpr struct {
  std::string_view label;
  uint16_t type;
  uint16_t code;
} kLabels[] = {
    {"SYN_REPORT", kSyn, kSynReport},
    {"SYN_MT_REPORT", kSyn, kSynMtReport},
    {"SYN_DROPPED", kSyn, kSynDropped},
    {"ABS_MT_SLOT", kAbs, kMtSlot},
    {"ABS_MT_TOUCH_MAJOR", kAbs, kMtTouchMajor},
    {"ABS_MT_TOUCH_MINOR", kAbs, kMtTouchMinor},
    {"ABS_MT_ORIENTATION", kAbs, kMtOrientation},
    {"ABS_MT_POSITION_X", kAbs, kMtPositionX},
    {"ABS_MT_POSITION_Y", kAbs, kMtPositionY},
    {"ABS_MT_TRACKING_ID", kAbs, kMtTrackingId},
};

using Words = std::vector<std::string_view>;

Words Split(std::string_view text) {
  Words words;
  for (size_t begin; (begin = text.find_first_not_of(kSpace)) != text.npos;) {
    text.remove_prefix(begin);
    const size_t end = std::min(text.find_first_of(kSpace), text.size());
    words.push_back(text.substr(0, end));
    text.remove_prefix(end);
  }
  return words;
}

template <typename Number>
std::optional<Number> Parse(std::string_view text, int base = 10) {
  Number number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number, base);
  if (result.ec != std::errc() || result.ptr != text.data() + text.size()) {
    return std::nullopt;
  }
  return number;
}

// Seconds with six decimals.
std::optional<int64_t> ParseTime(std::string_view text) {
  const size_t dot = text.find('.');
  if (dot == text.npos || text.size() - dot != 7) {
    return std::nullopt;
  }
  const auto seconds = Parse<uint32_t>(text.substr(0, dot));
  const auto micros = Parse<uint32_t>(text.substr(dot + 1));
  if (!seconds || !micros) {
    return std::nullopt;
  }
  return *seconds * kUsPerSecond + *micros;
}

// "EV_ABS" or "0003". A type that says nothing about touches may have any name.
uint16_t ParseType(std::string_view text) {
  return text == "EV_ABS"   ? uint16_t{kAbs}
         : text == "EV_SYN" ? uint16_t{kSyn}
                            : Parse<uint16_t>(text, 16).value_or(kOther);
}

uint16_t ParseCode(uint16_t type, std::string_view text) {
  for (const auto& known : kLabels) {
    if (known.type == type && known.label == text) {
      return known.code;
    }
  }
  return Parse<uint16_t>(text, 16).value_or(kOther);
}

// "[   12.345678] /dev/input/event4: EV_ABS       ABS_MT_SLOT          00000001", with or without
// the device, and with a rate at the end if `getevent -r` was used.
RecordingLine ParseGeteventEvent(std::string_view line) {
  const size_t bracket = line.find(']');
  if (bracket == line.npos) {
    return Malformed{"the time has no ]"};
  }
  const Words time = Split(line.substr(1, bracket - 1));
  const auto time_us = time.size() == 1 ? ParseTime(time[0]) : std::nullopt;
  if (!time_us) {
    return Malformed{"the time is not seconds with six decimals"};
  }
  Words words = Split(line.substr(bracket + 1));
  InputEvent event = {.time_us = *time_us};
  if (!words.empty() && words[0].back() == ':') {
    event.device = words[0].substr(0, words[0].size() - 1);
    words.erase(words.begin());
  }
  if (words.size() != 3 && !(words.size() == 5 && words[3] == "rate")) {
    return Malformed{"there is not one type, one code and one value"};
  }
  event.type = ParseType(words[0]);
  event.code = ParseCode(event.type, words[1]);
  // Keys, and tools as in "ABS_MT_TOOL_TYPE MT_TOOL_PALM", have names as values.
  const auto value = Parse<uint32_t>(words[2], 16);
  if (!value && (event.type == kAbs || event.type == kSyn) && event.code != kOther) {
    return Malformed{"the value is not a hexadecimal number of 32 bits"};
  }
  event.value = static_cast<int32_t>(value.value_or(0));
  return event;
}

RecordingLine CheckedAxis(std::optional<uint16_t> code, std::optional<int32_t> min,
                          std::optional<int32_t> max) {
  if (!code || !min || !max) {
    return Malformed{"the axis has no code, minimum and maximum"};
  }
  return InputAxis{.code = *code, .min = double(*min), .max = double(*max)};
}

// "    ABS (0003): ABS_MT_SLOT           : value 0, min 0, max 9, fuzz 0, flat 0, resolution 0"
RecordingLine ParseGeteventDescription(std::string_view line) {
  const size_t value = line.find(": value ");
  if (value == line.npos) {
    return {};
  }
  const Words names = Split(line.substr(0, value));
  const Words words = Split(line.substr(value + 1));
  const auto number = [&words](size_t i, std::string_view name) -> std::optional<int32_t> {
    if (words.size() <= i || words[i - 1] != name || words[i].back() != ',') {
      return std::nullopt;
    }
    return Parse<int32_t>(words[i].substr(0, words[i].size() - 1));
  };
  if (names.empty()) {
    return Malformed{"the axis has no name"};
  }
  return CheckedAxis(ParseCode(kAbs, names.back()), number(3, "min"), number(5, "max"));
}

RecordingLine ParseGetevent(std::string_view line) {
  if (line[0] == '[') {
    return ParseGeteventEvent(line);
  }
  if (line[0] == ' ' || line[0] == '\t') {
    return ParseGeteventDescription(line);
  }
  if (line.starts_with("add device ")) {
    return InputDevice{Split(line).back()};
  }
  if (line.starts_with("remove device ") || line.starts_with("could not get ")) {
    return {};
  }
  return Malformed{line.starts_with("/dev/") || line.starts_with("EV_")
                       ? "the event has no time; record with getevent -lt"
                       : "this is not a line of getevent -lt or -lp"};
}

// "E: 12.345678 0003 002f 0001", the value in decimals.
RecordingLine ParseEvemuEvent(const Words& words) {
  if (words.size() != 5) {
    return Malformed{"an event has a time, a type, a code and a value"};
  }
  const auto time_us = ParseTime(words[1]);
  const auto type = Parse<uint16_t>(words[2], 16);
  const auto code = Parse<uint16_t>(words[3], 16);
  const auto value = Parse<int32_t>(words[4]);
  if (!time_us) {
    return Malformed{"the time is not seconds with six decimals"};
  }
  if (!type || !code) {
    return Malformed{"type and code are not hexadecimal numbers of 16 bits"};
  }
  if (!value) {
    return Malformed{"the value is not a number of 32 bits"};
  }
  return InputEvent{
      .time_us = *time_us, .device = {}, .type = *type, .code = *code, .value = *value};
}

// "A: 35 0 1079 0 0 0", the code in hexadecimal.
RecordingLine ParseEvemuAxis(const Words& words) {
  if (words.size() < 4) {
    return Malformed{"the axis has no code, minimum and maximum"};
  }
  return CheckedAxis(Parse<uint16_t>(words[1], 16), Parse<int32_t>(words[2]),
                     Parse<int32_t>(words[3]));
}

RecordingLine ParseEvemu(std::string_view line) {
  if (line.size() > 1 && line[1] == ':' && (line[0] == 'E' || line[0] == 'A')) {
    const Words words = Split(line.substr(0, line.find('#')));
    return line[0] == 'E' ? ParseEvemuEvent(words) : ParseEvemuAxis(words);
  }
  // Name, identity, properties, and the bits, leds and switches of the device.
  constexpr std::string_view kOthers = "NIPBLS";
  if (line[0] == '#' ||
      (line.size() > 1 && line[1] == ':' && kOthers.find(line[0]) != kOthers.npos)) {
    return {};
  }
  return Malformed{"this is not a line of an evemu recording"};
}

}  // namespace

RecordingFormat FormatOf(std::string_view first_line) {
  if (first_line.find_first_not_of(kSpace) == first_line.npos) {
    return RecordingFormat::kUnknown;
  }
  const bool is_evemu = first_line[0] == '#' || (first_line.size() > 1 && first_line[1] == ':' &&
                                                 first_line[0] >= 'A' && first_line[0] <= 'Z');
  return is_evemu ? RecordingFormat::kEvemu : RecordingFormat::kGetevent;
}

RecordingLine ParseRecordingLine(std::string_view line, RecordingFormat format) {
  if (line.find_first_not_of(kSpace) == line.npos) {
    return {};
  }
  return format == RecordingFormat::kEvemu ? ParseEvemu(line) : ParseGetevent(line);
}

}  // namespace fp_host

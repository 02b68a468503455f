// SPDX-License-Identifier: Apache-2.0
#include "device/recording.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

#include "device/recording_line.h"

namespace fp_host {
namespace {

// Bounds of what is read: memory and time stay small whatever the file has.
constexpr size_t kMaxLine = 1024;
constexpr size_t kMaxRecords = 250000;  // 35 minutes of one finger at 120 Hz
constexpr size_t kMaxDevices = 64;
constexpr int64_t kMaxDurationUs = int64_t{24} * 3600 * 1000000;
constexpr size_t kMaxRecordsOfReport = 128;  // the handler looks at no more

// A driver has one slot for each contact that its controller can track.
constexpr int32_t kSlots = 32;

// The format of the reports: values of `type`, and indices into `coords`.
enum ReportType : uint32_t { kDown = 0, kMove = 1, kUp = 2 };
enum ReportCoord : size_t { kX = 0, kY = 1, kMajor = 2, kMinor = 3 };
constexpr double kQuarterTurn = 4096;

struct Contact {
  bool is_down = false;
  bool is_new = false;    // since the last report
  bool is_moved = false;  // since the last report
  // The kernel does not repeat a value that a slot has had before, even for another contact.
  std::optional<int32_t> x;
  std::optional<int32_t> y;
  int32_t major = 0;
  std::optional<int32_t> minor;  // none: a circle
  int32_t orientation = 0;
};

constexpr char kUnknown[] = " is not known; begin the file with the output of getevent -lp";

// From an axis of the recording to a side of the panel.
struct Scale {
  Scale() = default;
  Scale(const InputAxis& axis, uint16_t size)
      : offset(axis.min), factor(size / (axis.max - axis.min + 1)) {}

  double offset = 0;
  double factor = 1;
};

// Follows the slots of the kernel's multi-touch protocol B.
class Converter {
 public:
  Converter(const TouchPanel& panel, std::vector<TimedReport>* reports)
      : panel_(panel), reports_(reports) {}

  // Return an empty text or a reason.
  std::string Take(std::monostate) { return {}; }
  std::string Take(const Malformed& malformed) { return malformed.reason; }
  std::string Take(const InputDevice& device);
  std::string Take(const InputAxis& axis);
  std::string Take(const InputEvent& event);

 private:
  using Axes = std::map<uint16_t, InputAxis>;

  std::string TakeAbs(const InputEvent& event);
  std::string TakeTracking(int32_t id);
  std::string TakeReport(int64_t time_us);
  std::string Add(size_t slot, ReportType type);
  std::string Fill(const Contact& contact, TouchRecord* record) const;
  std::string FillAngle(const Contact& contact, TouchRecord* record) const;
  const InputAxis* AxisOf(uint16_t code) const;

  const TouchPanel panel_;
  std::vector<TimedReport>* const reports_;

  std::map<std::string, Axes, std::less<>> axes_;  // by device
  std::string described_;                          // the device that the lines are describing
  std::optional<std::string> touch_device_;
  std::optional<int64_t> first_us_;
  int64_t last_us_ = 0;
  size_t records_ = 0;

  std::array<Contact, kSlots> contacts_ = {};
  size_t slot_ = 0;
  std::vector<TouchRecord> report_;
};

std::string Converter::Take(const InputDevice& device) {
  described_ = device.path;
  axes_.try_emplace(described_);
  return axes_.size() > kMaxDevices ? "there are more than 64 devices" : "";
}

std::string Converter::Take(const InputAxis& axis) {
  const bool is_used =
      axis.code == kMtPositionX || axis.code == kMtPositionY || axis.code == kMtOrientation;
  if (!is_used) {
    return {};
  }
  if (axis.max <= axis.min || axis.max <= 0) {
    return "the maximum of the axis is not above its minimum, or not above 0";
  }
  axes_[described_][axis.code] = axis;
  return {};
}

std::string Converter::Take(const InputEvent& event) {
  first_us_ = first_us_.value_or(event.time_us);
  if (event.time_us < std::exchange(last_us_, event.time_us)) {
    return "the time is before that of the line above";
  }
  if (event.time_us - *first_us_ > kMaxDurationUs) {
    return "the recording is longer than a day";
  }
  if (event.type == kAbs && event.code >= kMtSlot && event.code <= kMtLast) {
    if (touch_device_.value_or(std::string(event.device)) != event.device) {
      return "a second device reports touches, besides " + *touch_device_;
    }
    touch_device_ = event.device;
    return TakeAbs(event);
  }
  if (event.type != kSyn || touch_device_.value_or("") != event.device) {
    return {};
  }
  switch (event.code) {
    case kSynReport:
      return TakeReport(event.time_us);
    case kSynDropped:
      return "the kernel dropped events here (SYN_DROPPED)";
    case kSynMtReport:
      return "the device has no slots (SYN_MT_REPORT)";
    default:
      return {};
  }
}

std::string Converter::TakeAbs(const InputEvent& event) {
  if (event.code == kMtSlot) {
    if (event.value < 0 || event.value >= kSlots) {
      return "the slot is not one of 0 to 31";
    }
    slot_ = static_cast<size_t>(event.value);
    return {};
  }
  if (event.code == kMtTrackingId) {
    return TakeTracking(event.value);
  }
  Contact& contact = contacts_[slot_];
  switch (event.code) {
    case kMtPositionX:
      contact.x = event.value;
      break;
    case kMtPositionY:
      contact.y = event.value;
      break;
    case kMtTouchMajor:
      contact.major = event.value;
      break;
    case kMtTouchMinor:
      contact.minor = event.value;
      break;
    case kMtOrientation:
      contact.orientation = event.value;
      break;
    default:
      return {};
  }
  contact.is_moved = true;
  return {};
}

// A contact ends with the id -1, or with the id of the next contact in its slot.
std::string Converter::TakeTracking(int32_t id) {
  Contact& contact = contacts_[slot_];
  if (contact.is_down) {
    std::string reason = contact.is_new ? Add(slot_, kDown) : "";
    reason = reason.empty() ? Add(slot_, kUp) : reason;
    if (!reason.empty()) {
      return reason;
    }
  }
  contact.is_down = id >= 0;
  contact.is_new = contact.is_down;
  return {};
}

std::string Converter::TakeReport(int64_t time_us) {
  for (size_t slot = 0; slot < contacts_.size(); ++slot) {
    Contact& contact = contacts_[slot];
    const bool is_new = std::exchange(contact.is_new, false);
    const bool is_moved = std::exchange(contact.is_moved, false);
    if (contact.is_down && (is_new || is_moved)) {
      if (std::string reason = Add(slot, is_new ? kDown : kMove); !reason.empty()) {
        return reason;
      }
    }
  }
  for (TouchRecord& record : report_) {
    record.stamp = static_cast<uint64_t>(time_us);
  }
  if (!report_.empty()) {
    reports_->push_back({.time_us = time_us, .records = std::exchange(report_, {})});
  }
  return {};
}

std::string Converter::Add(size_t slot, ReportType type) {
  if (++records_ > kMaxRecords) {
    return "the recording has more than 250,000 records";
  }
  TouchRecord record = {.id = static_cast<int32_t>(slot), .type = type};
  std::string reason = Fill(contacts_[slot], &record);
  report_.push_back(record);
  if (report_.size() > kMaxRecordsOfReport) {
    return "a report has more than 128 records";
  }
  return reason;
}

std::string Converter::Fill(const Contact& contact, TouchRecord* record) const {
  if (!contact.x || !contact.y) {
    return "a contact begins without ABS_MT_POSITION_X and ABS_MT_POSITION_Y";
  }
  const InputAxis* const x_axis = AxisOf(kMtPositionX);
  const InputAxis* const y_axis = AxisOf(kMtPositionY);
  const bool scales = panel_.width != 0 && panel_.height != 0;
  if (scales && (x_axis == nullptr || y_axis == nullptr)) {
    return std::string("the range of ABS_MT_POSITION_X or ABS_MT_POSITION_Y") + kUnknown;
  }
  const Scale x = scales ? Scale(*x_axis, panel_.width) : Scale();
  const Scale y = scales ? Scale(*y_axis, panel_.height) : Scale();
  const double length = (x.factor + y.factor) / 2;
  const double values[] = {(*contact.x - x.offset) * x.factor, (*contact.y - y.offset) * y.factor,
                           contact.major * length, contact.minor.value_or(contact.major) * length};
  for (size_t i = kX; i <= kMinor; ++i) {
    const double rounded = std::round(values[i]);
    if (rounded < 0 || rounded > std::numeric_limits<uint16_t>::max()) {
      return "a position or length of a contact is not one of 0 to 65535";
    }
    record->coords[i] = static_cast<uint16_t>(rounded);
  }
  return FillAngle(contact, record);
}

std::string Converter::FillAngle(const Contact& contact, TouchRecord* record) const {
  if (contact.orientation == 0) {
    return {};
  }
  const InputAxis* const axis = AxisOf(kMtOrientation);
  if (axis == nullptr) {
    return std::string("the range of ABS_MT_ORIENTATION") + kUnknown;
  }
  const double angle = contact.orientation * kQuarterTurn / axis->max;
  if (std::abs(angle) > 4 * kQuarterTurn) {
    return "the orientation of a contact is more than a turn";
  }
  record->angle = static_cast<int32_t>(std::lround(angle));
  return {};
}

// The ranges are those of the device, or of the only device that the file describes.
const InputAxis* Converter::AxisOf(uint16_t code) const {
  const auto own = axes_.find(touch_device_.value_or(""));
  const Axes* const axes = own != axes_.end()  ? &own->second
                           : axes_.size() == 1 ? &axes_.begin()->second
                                               : nullptr;
  if (axes == nullptr) {
    return nullptr;
  }
  const auto axis = axes->find(code);
  return axis == axes->end() ? nullptr : &axis->second;
}

struct CloseFile {
  void operator()(FILE* file) const { fclose(file); }
};

// Reads a line without its end. False at the end of the file, or if the line is too long.
bool ReadLine(FILE* file, std::string* line, bool* is_too_long) {
  line->clear();
  int c = 0;
  while ((c = getc(file)) != EOF && c != '\n') {
    line->push_back(static_cast<char>(c));
    if (line->size() > kMaxLine) {
      *is_too_long = true;
      return false;
    }
  }
  return c != EOF || !line->empty();
}

// The reason why the file cannot be read, and the number of the line, if it is in one.
std::string ReadLines(FILE* file, Converter* converter, size_t* number) {
  RecordingFormat format = RecordingFormat::kUnknown;
  bool is_too_long = false;
  for (std::string line; ReadLine(file, &line, &is_too_long);) {
    ++*number;
    format = format == RecordingFormat::kUnknown ? FormatOf(line) : format;
    std::string reason = std::visit([&](const auto& item) { return converter->Take(item); },
                                    ParseRecordingLine(line, format));
    if (!reason.empty()) {
      return reason;
    }
  }
  if (is_too_long) {
    ++*number;
    return "the line is longer than 1024 bytes";
  }
  if (ferror(file) != 0) {
    *number = 0;
    return strerror(errno);
  }
  return {};
}

}  // namespace

std::string ReadRecording(const std::string& path, const TouchPanel& panel,
                          std::vector<TimedReport>* reports) {
  const std::unique_ptr<FILE, CloseFile> file(fopen(path.c_str(), "re"));
  if (file == nullptr) {
    return path + ": " + strerror(errno);
  }
  Converter converter(panel, reports);
  size_t number = 0;
  const std::string reason = ReadLines(file.get(), &converter, &number);
  if (!reason.empty()) {
    return path + (number != 0 ? ":" + std::to_string(number) : "") + ": " + reason;
  }
  return reports->empty() ? path + ": there is no touch in this file" : "";
}

std::string PlayTouchRecording(const std::string& path, const TouchPanel& panel, Pace pace,
                               const PushTouchRecords& push) {
  std::vector<TimedReport> reports;
  std::string error = ReadRecording(path, panel, &reports);
  if (!error.empty()) {
    return error;
  }
  const auto start = std::chrono::steady_clock::now();
  for (const TimedReport& report : reports) {
    if (pace == Pace::kRecorded) {
      std::this_thread::sleep_until(
          start + std::chrono::microseconds(report.time_us - reports.front().time_us));
    }
    if (!push(report.records)) {
      return path + ": the touch device went away";
    }
  }
  return {};
}

std::string TouchNode::Play(const std::string& path, const TouchPanel& panel, Pace pace) {
  return PlayTouchRecording(
      path, panel, pace, [this](const std::vector<TouchRecord>& report) { return Push(report); });
}

}  // namespace fp_host

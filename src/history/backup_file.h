// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <string_view>

#include "common/exact_class.h"

// The backup file of a history is a sequence of frames "0x<crc>,0x<length>,<record text>", with the
// CRC-32 and the length in bytes of the text in lower-case hexadecimal. It has no separators,
// header or trailer. docs/backup-file.md describes the format.

namespace android::fp_utils {

// The content of a history's file as of its last save. Most records have not changed by the next
// save, and their frames are reused.
class BackupContent {
 public:
  // Returns the frames of `records` in their order, valid until the next call. `Known` are the
  // classes whose ToBackupString() depends on nothing but the fields. The frame of a record of any
  // other class is composed every time.
  template <typename... Known, typename Records>
  [[nodiscard]] std::string_view Update(const Records& records) {
    DropFramesBefore(records.empty() ? nullptr : records.front().get());
    size_t index = 0;
    size_t at = 0;
    for (const auto& record : records) {
      if (index == frames_.size()) {
        frames_.emplace_back();
      }
      Frame& frame = frames_[index++];
      frame.record = record.get();
      const std::string_view state = StateOf<Known...>(*record);
      if (state.empty() || state != frame.state) {
        frame.state = state;
        SetText(frame, at, record->ToBackupString());
      }
      at += frame.bytes;
    }
    frames_.resize(index);
    content_.resize(at);
    return content_;
  }

 private:
  struct Frame {
    const void* record = nullptr;  // only compared, to find the frames of dropped records
    std::string state;             // of the record when its frame was composed
    size_t bytes = 0;              // length of the frame
  };

  // The bytes of a record whose class is exactly one of Known; empty for any other class. Fields
  // are not compared by value, because equal ones can have different texts (0 and -0). A difference
  // in the padding only causes a frame to be composed again.
  template <typename... Known, typename Record>
  static std::string_view StateOf(const Record& record) {
    size_t size = 0;
    (void)((ExactCast<Known>(record) != nullptr && (size = sizeof(Known)) != 0) || ...);
    return {reinterpret_cast<const char*>(&record), size};
  }

  // Removes the frames of the oldest records, which the history has dropped.
  void DropFramesBefore(const void* record);
  void SetText(Frame& frame, size_t at, const std::string& record_text);

  std::deque<Frame> frames_;
  std::string content_;
};

// Reads and writes the file of one history, and logs under the names of that history.
class BackupFile {
 public:
  // The names that appear in the log lines of a history.
  struct LogNames {
    const char* tag;
    const char* create_operation;  // creates the directory
    const char* save_operation;
    const char* load_operation;
    const char* load_signature;  // literal, so that every compiler logs the same text
  };

  // `instance` is the history's name in the messages about damage; null where it has none. All
  // arguments are borrowed.
  BackupFile(const LogNames& names, const char* instance, const std::string& path)
      : names_(names), instance_(instance), path_(path) {}

  // Creates `directory` if necessary and returns the path of `file_name` in it. A failure is
  // logged; opening the file then fails, too.
  [[nodiscard]] static std::string CreateDirectoryAndPath(const LogNames& names,
                                                          const char* directory,
                                                          const std::string& file_name);

  // Replaces the content of the file. The file is not truncated first, so a process that is killed
  // during the write leaves the start of the new content followed by the rest of the old one.
  void Save(std::string_view content) const;

  // Calls `take` with each record text up to the end of the file or the first damage.
  void Load(const std::function<void(std::string& record_text)>& take) const;

 private:
  void LogOpenFailure(const char* operation) const;
  void LogCrcMismatch() const;
  void LogOversize(unsigned long long length) const;

  const LogNames& names_;
  const char* instance_;
  const std::string& path_;
};

}  // namespace android::fp_utils

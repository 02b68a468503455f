// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <string_view>

#include "common/exact_class.h"

// The backup file of a history: frames laid end to end, each "0x<crc>,0x<length>,<record text>"
// with the CRC-32 and the length in bytes of the text, lower-case hexadecimal. No separator, header
// or trailer. docs/backup-file.md describes it for writers of other readers.

namespace android::fp_utils {

// The content of a history's file as of its last save. Most records of the next save are the same
// ones with the same fields, and their frames are not composed again.
class BackupContent {
 public:
  // The frames of `records` in their order, valid until the next call. `Known` are the classes
  // whose ToBackupString() depends on nothing but the fields; a record of any other class is asked
  // for its text every time.
  template <typename... Known, typename Records>
  std::string_view Update(const Records& records) {
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
    const void* record = nullptr;  // only tells which frames the history has dropped
    std::string state;             // of the record when its frame was composed
    size_t bytes = 0;              // length of the frame
  };

  // The bytes of a record whose class is one of Known itself, nothing of any other. Bytes, since
  // fields that compare equal may have different texts: 0 and -0. Padding is among them; where it
  // differs, a frame is composed again without need.
  template <typename... Known, typename Record>
  static std::string_view StateOf(const Record& record) {
    size_t size = 0;
    (void)((ExactCast<Known>(record) != nullptr && (size = sizeof(Known)) != 0) || ...);
    return {reinterpret_cast<const char*>(&record), size};
  }

  void DropFramesBefore(const void* record);
  void SetText(Frame& frame, size_t at, const std::string& record_text);

  std::deque<Frame> frames_;
  std::string content_;
};

// One history's reader and writer of its file, with the names under which the history logs.
class BackupFile {
 public:
  struct Wording {
    const char* tag;
    const char* create_operation;  // who creates the directory
    const char* save_operation;
    const char* load_operation;
    const char* load_signature;  // literal, so that every compiler logs the same text
  };

  // `instance` is the history's name in the messages about damage; null where it has none. All
  // arguments are borrowed.
  BackupFile(const Wording& wording, const char* instance, const std::string& path)
      : wording_(wording), instance_(instance), path_(path) {}

  // Creates `directory` if need be and returns the path of `file_name` in it. A failure is logged
  // and shows again when the file is opened.
  static std::string Prepare(const Wording& wording, const char* directory,
                             const std::string& file_name);

  // Makes `content` the file's. On the way there the old content is not thrown away first: what a
  // kill in between leaves is the front of the new content with the rest of the old one behind it.
  void Save(std::string_view content) const;

  // Hands the record texts to `take` up to the end of the file or the first damage.
  void Load(const std::function<void(std::string& record_text)>& take) const;

 private:
  void LogOpenFailure(const char* operation) const;
  void LogCrcMismatch() const;
  void LogOversize(unsigned long long length) const;

  const Wording& wording_;
  const char* instance_;
  const std::string& path_;
};

}  // namespace android::fp_utils

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "history/record_text.h"

// The backup file of a history: frames laid end to end, each "0x<crc>,0x<length>,<record text>"
// with the CRC-32 and the length in bytes of the text, lower-case hexadecimal. No separator, header
// or trailer. docs/backup-file.md describes it for writers of other readers.

namespace android::fp_utils {

// One history's reader and writer of its file, with the names under which the history logs.
class BackupFile {
 public:
  // The longest record text that the reader takes.
  static constexpr size_t kMaxRecordBytes = 1024;

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

  // Replaces the file by the records in their order. The record class has a WriteOwnRecord().
  template <typename Records>
  void Save(const Records& records) const {
    // The content is complete before the old one is truncated, and goes out in one write: a service
    // killed meanwhile has the file empty for as short a time as possible.
    std::string content;
    content.reserve(records.size() * kTypicalFrameBytes);
    for (const auto& record : records) {
      RecordBuffer buffer;
      if (const char* end = WriteOwnRecord(buffer, *record)) {
        AppendFrame(content, {buffer, end});
      } else {
        AppendFrame(content, record->ToBackupString());
      }
    }
    Replace(content);
  }

  // Hands the record texts to `take` up to the end of the file or the first damage.
  void Load(const std::function<void(std::string& record_text)>& take) const;

 private:
  // What a usual record takes with its header; a guess that spares growing the content.
  static constexpr size_t kTypicalFrameBytes = 256;

  static void AppendFrame(std::string& content, std::string_view record_text);
  void Replace(const std::string& content) const;
  void LogOpenFailure(const char* operation) const;
  void LogCrcMismatch() const;
  void LogOversize(uint64_t length) const;

  const Wording& wording_;
  const char* instance_;
  const std::string& path_;
};

}  // namespace android::fp_utils

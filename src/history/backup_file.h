// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

// The backup file of a history: frames laid end to end, each "0x<crc>,0x<length>,<record text>"
// with the CRC-32 and the length in bytes of the text, lower-case hexadecimal. No separator, header
// or trailer. docs/backup-file.md describes it for writers of other readers.

namespace android::fp_utils {

// The frames of a whole file, composed in one block of memory.
class BackupFrames {
 public:
  explicit BackupFrames(size_t records);

  // Where the next record text may be composed, with the room of a RecordBuffer; CloseFrame() puts
  // the header before it.
  char* OpenFrame();
  void CloseFrame(const char* text_end);

  // The same for a text that was composed elsewhere.
  void AddFrame(std::string_view record_text);

  std::string_view GetContent() const { return {block_.get(), size_}; }

 private:
  void Reserve(size_t more);

  size_t capacity_;
  std::unique_ptr<char[]> block_;
  size_t size_ = 0;
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

  // Replaces the file by the records in their order. Each record class has a
  // WriteOwnRecord(), which spares a string where nobody has overridden ToBackupString().
  template <typename Records>
  void Save(const Records& records) const {
    // The content is complete before the old one is truncated, and goes out in one write: a service
    // killed meanwhile has the file empty for as short a time as possible.
    BackupFrames frames(records.size());
    for (const auto& record : records) {
      const char* const end = WriteOwnRecord(frames.OpenFrame(), *record);
      if (end != nullptr) {
        frames.CloseFrame(end);
      } else {
        frames.AddFrame(record->ToBackupString());
      }
    }
    Replace(frames.GetContent());
  }

  // Hands the record texts to `take` up to the end of the file or the first damage.
  void Load(const std::function<void(std::string& record_text)>& take) const;

 private:
  void Replace(std::string_view content) const;
  void LogOpenFailure(const char* operation) const;
  void LogCrcMismatch() const;
  void LogOversize(unsigned long long length) const;

  const Wording& wording_;
  const char* instance_;
  const std::string& path_;
};

}  // namespace android::fp_utils

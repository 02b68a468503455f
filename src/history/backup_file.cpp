// SPDX-License-Identifier: Apache-2.0
#include "history/backup_file.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>

#include "common/log.h"
#include "fp_utils/crc32.h"

namespace android::fp_utils {
namespace {

// Owner read and write without the search bit: on a device init has created the directory with its
// real mode long before, and a service that finds none must not open it up.
constexpr mode_t kDirectoryMode = 0600;

struct FileCloser {
  void operator()(FILE* file) const { fclose(file); }
};
using UniqueFile = std::unique_ptr<FILE, FileCloser>;

}  // namespace

void BackupFile::AppendFrame(std::string& content, std::string_view record_text) {
  char header[48];
  char* end = WriteHex(header, crc32(record_text.data(), record_text.size()));
  *end++ = ',';
  end = WriteHex(end, record_text.size());
  *end++ = ',';
  content.append(header, end);
  content += record_text;
}

std::string BackupFile::Prepare(const Wording& wording, const char* directory,
                                const std::string& file_name) {
  if (mkdir(directory, kDirectoryMode) != 0 && errno != EEXIST) {
    FP_LOG_ERROR(wording.tag, "[%s] Failed to create directory \"%s\" with error %d.",
                 wording.create_operation, directory, errno);
  }
  std::string path = directory;
  if (path.empty() || path.back() != '/') {
    path += '/';
  }
  return path + file_name;
}

void BackupFile::LogOpenFailure(const char* operation) const {
  FP_LOG_ERROR(wording_.tag, "[%s] Failed to open \"%s\" with error %d.", operation, path_.c_str(),
               errno);
}

void BackupFile::LogCrcMismatch() const {
  if (instance_ != nullptr) {
    FP_LOG_ERROR(wording_.tag, "[%s][%s] Crc checksum didn't match!", instance_,
                 wording_.load_signature);
  } else {
    FP_LOG_ERROR(wording_.tag, "[%s] Crc checksum didn't match!", wording_.load_signature);
  }
}

void BackupFile::LogOversize(uint64_t length) const {
  FP_LOG_ERROR(wording_.tag, "[%s][%s] Frame of %llu bytes is too long!",
               instance_ != nullptr ? instance_ : wording_.tag, wording_.load_signature,
               static_cast<unsigned long long>(length));
}

void BackupFile::Replace(const std::string& content) const {
  const UniqueFile file(fopen(path_.c_str(), "we"));
  if (file == nullptr) {
    LogOpenFailure(wording_.save_operation);
    return;
  }
  setvbuf(file.get(), nullptr, _IONBF, 0);
  // Unchecked: the records are still in memory, the next save writes them all again, and the next
  // load stops at whatever a full disk cut off.
  fwrite(content.data(), 1, content.size(), file.get());
}

void BackupFile::Load(const std::function<void(std::string& record_text)>& take) const {
  const UniqueFile file(fopen(path_.c_str(), "re"));
  if (file == nullptr) {
    LogOpenFailure(wording_.load_operation);
    return;
  }
  char buffer[kMaxRecordBytes] = {};
  uint32_t crc = 0;
  uint64_t length = 0;
  while (fscanf(file.get(), "0x%x,0x%lx,", &crc, &length) == 2) {
    if (length > sizeof buffer) {
      LogOversize(length);
      return;
    }
    // A short read leaves the rest of the buffer as the record before it did; the CRC tells.
    (void)!fread(buffer, length, 1, file.get());
    buffer[std::min<uint64_t>(length, sizeof buffer - 1)] = '\0';
    if (crc32(buffer, length) != crc) {
      LogCrcMismatch();
      return;
    }
    std::string record_text(buffer, length);
    take(record_text);
  }
  // A header that does not read as one is the normal end; a device that fails is not.
  if (ferror(file.get()) != 0) {
    FP_LOG_ERROR(wording_.tag, "[%s] Failed to read \"%s\" with error %d.", wording_.load_operation,
                 path_.c_str(), errno);
  }
}

}  // namespace android::fp_utils

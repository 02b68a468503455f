// SPDX-License-Identifier: Apache-2.0
#include "history/backup_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <utility>

#include <android-base/file.h>
#include <android-base/unique_fd.h>

#include "common/bounded_text.h"
#include "common/log.h"
#include "fp_utils/crc32.h"

namespace android::fp_utils {
namespace {

// Read and write for the owner only. On a device, init creates the directory with its real mode
// before the service starts; a service that has to create it must not make it accessible.
constexpr mode_t kDirectoryMode = 0600;

constexpr mode_t kFileMode = 0666;  // before the umask

// The longest record text that the reader accepts.
constexpr size_t kMaxRecordBytes = 1024;

std::string FrameOf(const std::string& record_text) {
  BoundedText<64> header;
  header.Append("0x%x,0x%zx,", crc32(record_text.data(), record_text.size()), record_text.size());
  return header.ToString() + record_text;
}

// Truncates a file that is longer than `length`.
bool LimitLength(int file, size_t length) {
  struct stat status = {};
  return fstat(file, &status) == 0 && (static_cast<uint64_t>(status.st_size) <= length ||
                                       ftruncate(file, static_cast<off_t>(length)) == 0);
}

struct FileCloser {
  void operator()(FILE* file) const { fclose(file); }
};
using UniqueFile = std::unique_ptr<FILE, FileCloser>;

}  // namespace

void BackupContent::DropFramesBefore(const void* record) {
  size_t bytes = 0;
  while (!frames_.empty() && frames_.front().record != record) {
    bytes += frames_.front().bytes;
    frames_.pop_front();
  }
  content_.erase(0, bytes);
}

void BackupContent::SetText(Frame& frame, size_t at, const std::string& record_text) {
  const std::string text = FrameOf(record_text);
  content_.replace(at, frame.bytes, text);
  frame.bytes = text.size();
}

std::string BackupFile::CreateDirectoryAndPath(const LogNames& names, const char* directory,
                                               const std::string& file_name) {
  if (mkdir(directory, kDirectoryMode) != 0 && errno != EEXIST) {
    FP_LOG_ERROR(names.tag, "[%s] Failed to create directory \"%s\" with error %d.",
                 names.create_operation, directory, errno);
  }
  std::string path = directory;
  if (path.empty() || path.back() != '/') {
    path += '/';
  }
  return path + file_name;
}

void BackupFile::LogOpenFailure(const char* operation) const {
  FP_LOG_ERROR(names_.tag, "[%s] Failed to open \"%s\" with error %d.", operation, path_.c_str(),
               errno);
}

void BackupFile::LogCrcMismatch() const {
  if (instance_ != nullptr) {
    FP_LOG_ERROR(names_.tag, "[%s][%s] Crc checksum didn't match!", instance_,
                 names_.load_signature);
  } else {
    FP_LOG_ERROR(names_.tag, "[%s] Crc checksum didn't match!", names_.load_signature);
  }
}

void BackupFile::LogOversize(unsigned long long length) const {
  FP_LOG_ERROR(names_.tag, "[%s][%s] Frame of %llu bytes is too long!",
               instance_ != nullptr ? instance_ : names_.tag, names_.load_signature, length);
}

void BackupFile::Save(std::string_view content) const {
  const base::unique_fd file(open(path_.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, kFileMode));
  if (file < 0 || !LimitLength(file, content.size())) {
    LogOpenFailure(names_.save_operation);
    return;
  }
  // Not checked: the records are still in memory, the next save writes all of them again, and a
  // load stops at the frame that a full disk has truncated.
  base::WriteFully(file, content.data(), content.size());
}

void BackupFile::Load(const std::function<void(std::string& record_text)>& take) const {
  const UniqueFile file(fopen(path_.c_str(), "re"));
  if (file == nullptr) {
    LogOpenFailure(names_.load_operation);
    return;
  }
  char buffer[kMaxRecordBytes] = {};
  uint32_t crc = 0;
  unsigned long long length = 0;
  while (fscanf(file.get(), "0x%x,0x%llx,", &crc, &length) == 2) {
    if (length > sizeof buffer) {
      LogOversize(length);
      return;
    }
    // After a short read the buffer ends in bytes of the previous record; the CRC detects that.
    (void)!fread(buffer, length, 1, file.get());
    buffer[std::min<size_t>(length, sizeof buffer - 1)] = '\0';
    if (crc32(buffer, length) != crc) {
      LogCrcMismatch();
      return;
    }
    std::string record_text(buffer, length);
    take(record_text);
  }
  // Without a valid header the load ends quietly; a read error is logged.
  if (ferror(file.get()) != 0) {
    FP_LOG_ERROR(names_.tag, "[%s] Failed to read \"%s\" with error %d.", names_.load_operation,
                 path_.c_str(), errno);
  }
}

}  // namespace android::fp_utils

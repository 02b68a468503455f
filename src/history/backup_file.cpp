// SPDX-License-Identifier: Apache-2.0
#include "history/backup_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include <android-base/file.h>
#include <android-base/unique_fd.h>

#include "common/log.h"
#include "fp_utils/crc32.h"
#include "history/record_text.h"

namespace android::fp_utils {
namespace {

// Owner read and write without the search bit: on a device init has created the directory with its
// real mode long before, and a service that finds none must not open it up.
constexpr mode_t kDirectoryMode = 0600;

constexpr mode_t kFileMode = 0666;  // less the umask

// A usual frame; guesses that spare growing the block and moving the text behind its header.
constexpr size_t kTypicalFrameBytes = 256;
constexpr size_t kUsualHeaderBytes = sizeof("0x12345678,0x12,") - 1;
constexpr size_t kMaxHeaderBytes = 64;

// Writes the header of `record_text` and returns its length.
size_t WriteHeader(char* out, std::string_view record_text) {
  char* end = WriteHex(out, crc32(record_text.data(), record_text.size()));
  *end++ = ',';
  end = WriteHex(end, record_text.size());
  *end++ = ',';
  return static_cast<size_t>(end - out);
}

struct FileCloser {
  void operator()(FILE* file) const { fclose(file); }
};
using UniqueFile = std::unique_ptr<FILE, FileCloser>;

}  // namespace

BackupFrames::BackupFrames(size_t records)
    : capacity_(records * kTypicalFrameBytes + kMaxHeaderBytes + sizeof(RecordBuffer)),
      block_(new char[capacity_]) {}  // not zeroed

void BackupFrames::Reserve(size_t more) {
  if (capacity_ - size_ >= more) {
    return;
  }
  capacity_ = 2 * (size_ + more);
  std::unique_ptr<char[]> larger(new char[capacity_]);
  memcpy(larger.get(), block_.get(), size_);
  block_ = std::move(larger);
}

char* BackupFrames::OpenFrame() {
  Reserve(kMaxHeaderBytes + sizeof(RecordBuffer));
  return block_.get() + size_ + kUsualHeaderBytes;
}

void BackupFrames::CloseFrame(const char* text_end) {
  char* const frame = block_.get() + size_;
  const char* const text = frame + kUsualHeaderBytes;
  const auto text_bytes = static_cast<size_t>(text_end - text);
  char header[kMaxHeaderBytes];
  const size_t header_bytes = WriteHeader(header, {text, text_bytes});
  if (header_bytes == kUsualHeaderBytes) {
    memcpy(frame, header, kUsualHeaderBytes);  // of a length that the compiler knows
  } else {
    memmove(frame + header_bytes, text, text_bytes);
    memcpy(frame, header, header_bytes);
  }
  size_ += header_bytes + text_bytes;
}

void BackupFrames::AddFrame(std::string_view record_text) {
  Reserve(kMaxHeaderBytes + record_text.size());
  size_ += WriteHeader(block_.get() + size_, record_text);
  memcpy(block_.get() + size_, record_text.data(), record_text.size());
  size_ += record_text.size();
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

void BackupFile::LogOversize(unsigned long long length) const {
  FP_LOG_ERROR(wording_.tag, "[%s][%s] Frame of %llu bytes is too long!",
               instance_ != nullptr ? instance_ : wording_.tag, wording_.load_signature, length);
}

void BackupFile::Replace(std::string_view content) const {
  // What fopen() does for mode "w", without its buffer: there is one write to make.
  const base::unique_fd file(
      open(path_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kFileMode));
  if (file < 0) {
    LogOpenFailure(wording_.save_operation);
    return;
  }
  // Unchecked: the records are still in memory, the next save writes them all again, and the next
  // load stops at whatever a full disk cut off.
  base::WriteFully(file, content.data(), content.size());
}

void BackupFile::Load(const std::function<void(std::string& record_text)>& take) const {
  const UniqueFile file(fopen(path_.c_str(), "re"));
  if (file == nullptr) {
    LogOpenFailure(wording_.load_operation);
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
    // A short read leaves the rest of the buffer as the record before it did; the CRC tells.
    (void)!fread(buffer, length, 1, file.get());
    buffer[std::min<size_t>(length, sizeof buffer - 1)] = '\0';
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

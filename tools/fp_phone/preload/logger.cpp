// SPDX-License-Identifier: Apache-2.0
//
// The log of a program under `fp_phone run`. Each line is written at once to the phone's log and to
// standard error, so that none is lost if the program aborts.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <mutex>
#include <string>
#include <string_view>

#include <android-base/logging.h>
#include <android/log.h>
#include <log/log_read.h>
#include <log/logprint.h>

#include "environment.h"

namespace fp_phone {
namespace {

// The log's descriptor is kept out of the way of the program's own, which begin with the lowest.
constexpr int kLowestDescriptor = 500;

constexpr int kMode = 0644;

// The phone's log is a file of logger_entry, each followed by priority, tag and message.
class LogFile {
 public:
  void Append(const iovec* parts, int count) {
    const std::lock_guard lock(mutex_);
    if (IsOpen() || Open()) {
      [[maybe_unused]] const ssize_t written = writev(fd_, parts, count);
    }
  }

 private:
  // Whether the descriptor is still that of the log: a program may close what it did not open, and
  // get the same number for a file of its own.
  bool IsOpen() const {
    struct stat found = {};
    return fd_ >= 0 && fstat(fd_, &found) == 0 && found.st_dev == opened_.st_dev &&
           found.st_ino == opened_.st_ino && found.st_nlink > 0;
  }

  bool Open() {
    const char* const path = getenv(kLogVariable);
    const int fd =
        path == nullptr ? -1 : open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, kMode);
    if (fd < 0) {
      return false;
    }
    // fcntl() and close() are interposed and count for faults.
    const auto moved = static_cast<int>(syscall(SYS_fcntl, fd, F_DUPFD_CLOEXEC, kLowestDescriptor));
    if (moved >= 0) {
      syscall(SYS_close, fd);
    }
    fd_ = moved >= 0 ? moved : fd;
    return fstat(fd_, &opened_) == 0;
  }

  std::mutex mutex_;

  // Guarded by mutex_.
  int fd_ = -1;
  struct stat opened_ = {};
};

LogFile& File() {
  static auto* const file = new LogFile;  // never destroyed: threads log while the process exits
  return *file;
}

// Format and filter of what is printed. `fp_phone run` has checked them.
AndroidLogFormat* MakeFormat() {
  AndroidLogFormat* const format = android_log_format_new();
  const char* const name = getenv(kLogFormatVariable);
  android_log_setPrintFormat(
      format, name != nullptr ? android_log_formatFromString(name) : FORMAT_THREADTIME);
  const char* const filter = getenv(kLogFilterVariable);
  if (filter != nullptr) {
    android_log_addFilterString(format, filter);
  }
  return format;
}

void Print(const AndroidLogEntry& entry) {
  static AndroidLogFormat* const format = MakeFormat();
  if (android_log_shouldPrintLine(format, entry.tag, entry.priority) == 0) {
    return;
  }
  char buffer[1024];
  size_t size = 0;
  char* const line = android_log_formatLogLine(format, buffer, sizeof buffer, &entry, &size);
  if (line != nullptr) {
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, line, size);
  }
  if (line != buffer) {
    free(line);
  }
}

// Like the platform's logger, cuts what is longer than an entry.
void Log(int priority, const char* tag, const char* message) {
  constexpr size_t kMaxTag = 1024;
  const std::string tag_text(std::string_view(tag != nullptr ? tag : "").substr(0, kMaxTag));
  const std::string text(
      std::string_view(message).substr(0, LOGGER_ENTRY_MAX_PAYLOAD - tag_text.size() - 3));

  timespec now = {};
  clock_gettime(CLOCK_REALTIME, &now);
  const auto priority_byte = static_cast<char>(priority);
  logger_entry header = {};
  header.len = static_cast<uint16_t>(1 + tag_text.size() + 1 + text.size() + 1);
  header.hdr_size = sizeof(logger_entry);
  header.pid = getpid();
  header.tid = static_cast<uint32_t>(gettid());
  header.sec = static_cast<uint32_t>(now.tv_sec);
  header.nsec = static_cast<uint32_t>(now.tv_nsec);
  header.lid = LOG_ID_MAIN;
  header.uid = getuid();
  const iovec parts[] = {{&header, sizeof header},
                         {const_cast<char*>(&priority_byte), 1},
                         {const_cast<char*>(tag_text.c_str()), tag_text.size() + 1},
                         {const_cast<char*>(text.c_str()), text.size() + 1}};
  File().Append(parts, std::size(parts));
  Print({.tv_sec = now.tv_sec,
         .tv_nsec = now.tv_nsec,
         .priority = static_cast<android_LogPriority>(priority),
         .uid = static_cast<int32_t>(header.uid),
         .pid = header.pid,
         .tid = static_cast<int32_t>(header.tid),
         .tag = tag_text.c_str(),
         .tagLen = tag_text.size(),
         .messageLen = text.size(),
         .message = text.c_str()});
}

// A device prints debug lines, a host does not by default.
[[gnu::constructor]] void PrintAllPriorities() {
  __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
}

}  // namespace
}  // namespace fp_phone

// These replace the loggers of the platform's libraries: those of liblog for a host and for a
// device, and the one that InitLogging() of libbase installs on a host.

extern "C" void __android_log_stderr_logger(const __android_logger_data* data,
                                            const char* message) {
  fp_phone::Log(data->priority, data->tag, message);
}

extern "C" void __android_log_logd_logger(const __android_logger_data* data, const char* message) {
  fp_phone::Log(data->priority, data->tag, message);
}

namespace android::base {

void StderrLogger(LogId /*id*/, LogSeverity severity, const char* tag, const char* /*file*/,
                  unsigned int /*line*/, const char* message) {
  // libbase counts from 0 what liblog counts from ANDROID_LOG_VERBOSE, and has two fatal ones.
  const int priority =
      std::min(int{severity} + ANDROID_LOG_VERBOSE, static_cast<int>(ANDROID_LOG_FATAL));
  fp_phone::Log(priority, tag, message);
}

}  // namespace android::base

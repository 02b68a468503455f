// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <android/log.h>
#include <log/log_read.h>
#include <log/logprint.h>

#include "commands.h"

namespace fp_phone {
namespace {

struct Free {
  void operator()(AndroidLogFormat* format) const { android_log_format_free(format); }
  void operator()(FILE* file) const { fclose(file); }
  void operator()(char* text) const { free(text); }
};
using Format = std::unique_ptr<AndroidLogFormat, Free>;

// One entry of the log, which the preloaded logger has written. False at the end or at damage.
bool Read(FILE* file, log_msg* message) {
  logger_entry& entry = message->entry;
  if (fread(&entry, sizeof entry, 1, file) != 1) {
    return false;
  }
  constexpr size_t kLeast = 3;  // priority, and the NULs of tag and message
  if (entry.hdr_size != sizeof entry || entry.len < kLeast ||
      entry.len > LOGGER_ENTRY_MAX_PAYLOAD ||
      fread(message->buf + sizeof entry, entry.len, 1, file) != 1) {
    return false;
  }
  message->buf[sizeof entry + entry.len] = '\0';
  return true;
}

void Print(AndroidLogFormat* format, log_msg* message) {
  AndroidLogEntry entry = {};
  if (android_log_processLogBuffer(&message->entry, &entry) != 0 ||
      android_log_shouldPrintLine(format, entry.tag, entry.priority) == 0) {
    return;
  }
  size_t size = 0;
  const std::unique_ptr<char, Free> line(
      android_log_formatLogLine(format, nullptr, 0, &entry, &size));
  fwrite(line.get(), 1, size, stdout);
}

}  // namespace

std::string CheckLogFilter(const std::string& text) {
  const Format format(android_log_format_new());
  const bool is_good = android_log_addFilterString(format.get(), text.c_str()) == 0;
  return is_good ? "" : fmt::format("\"{}\" is not a filter such as TAG:I or *:S", text);
}

std::string CheckLogFormat(const std::string& text) {
  const AndroidLogPrintFormat format = android_log_formatFromString(text.c_str());
  const bool is_good = format > FORMAT_OFF && format <= FORMAT_LONG;
  return is_good ? ""
                 : fmt::format("\"{}\" is not a format such as threadtime, time or brief", text);
}

int ShowLog(const Options& options) {
  const std::unique_ptr<FILE, Free> file(
      fopen(options.LogFile().c_str(), options.clears_log ? "r+e" : "re"));
  if (file == nullptr) {
    PrintError("{}: {}", Printable(options.root),
               errno == ENOENT ? "no program has run on this phone" : strerror(errno));
    return kFailed;
  }
  if (options.clears_log) {
    std::filesystem::resize_file(options.LogFile(), 0);
    return kDone;
  }
  const Format format(android_log_format_new());
  android_log_setPrintFormat(format.get(),
                             android_log_formatFromString(options.log_format.c_str()));
  for (const std::string& filter : options.log_filters) {
    android_log_addFilterString(format.get(), filter.c_str());
  }
  const auto message = std::make_unique<log_msg>();
  long good = 0;
  while (Read(file.get(), message.get())) {
    Print(format.get(), message.get());
    good = ftell(file.get());
  }
  if (ftell(file.get()) != good) {  // not at the end of an entry
    PrintError("{}: the log is damaged at byte {}", Printable(options.LogFile()), good);
    return kFailed;
  }
  return kDone;
}

}  // namespace fp_phone

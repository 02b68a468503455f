// SPDX-License-Identifier: Apache-2.0
#include "reading/input.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

namespace fp_inspect {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void Fail(const std::string& path, const std::string& why) {
  throw InputError(fmt::format("{}: {}", path, why));
}

}  // namespace

ByteWindow::ByteWindow(const std::string& path) : path_(path), buffer_(kCapacity, '\0') {
  // Without O_NONBLOCK the open of a named pipe would wait for a writer.
  file_.reset(path == "-" ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                          : open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  struct stat status = {};
  if (file_ < 0 || fstat(file_, &status) != 0) {
    Fail(path, strerror(errno));
  }
  if (path != "-" && !S_ISREG(status.st_mode) && !S_ISFIFO(status.st_mode)) {
    Fail(path, S_ISDIR(status.st_mode) ? "is a folder" : "is neither a file nor a pipe");
  }
  if (path != "-" && S_ISFIFO(status.st_mode) && Fill(1).empty()) {
    Fail(path, "is a named pipe without a writer");
  }
}

ByteWindow ByteWindow::OfBytes(std::string bytes) {
  ByteWindow window;
  window.buffer_ = std::move(bytes);
  window.end_ = window.read_ = window.buffer_.size();
  window.at_end_ = true;
  return window;
}

size_t ByteWindow::Read(char* out, size_t room) {
  for (;;) {
    const ssize_t count = read(file_, out, room);
    if (count >= 0) {
      return static_cast<size_t>(count);
    }
    if (errno == EAGAIN) {
      pollfd waiting = {.fd = file_, .events = POLLIN, .revents = 0};
      (void)!poll(&waiting, 1, -1);
    } else if (errno != EINTR) {
      Fail(path_, strerror(errno));
    }
  }
}

std::string_view ByteWindow::Fill(size_t wanted) {
  wanted = std::min(wanted, buffer_.size());
  if (end_ - begin_ < wanted && begin_ > 0 && !at_end_) {
    memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
    end_ -= std::exchange(begin_, 0);
  }
  while (end_ - begin_ < wanted && !at_end_) {
    const size_t count = Read(buffer_.data() + end_, buffer_.size() - end_);
    at_end_ = count == 0;
    end_ += count;
    read_ += count;
  }
  return {buffer_.data() + begin_, end_ - begin_};
}

std::vector<std::string> FilesBelow(const std::string& folder, size_t* left_out) {
  std::vector<std::string> files;
  std::error_code error;
  fs::recursive_directory_iterator it(folder, error);
  if (error) {
    Fail(folder, error.message());
  }
  for (; it != fs::recursive_directory_iterator(); it.increment(error)) {
    std::error_code ignored;
    if (it->is_regular_file(ignored)) {
      files.push_back(it->path().string());
    } else if (it->is_symlink(ignored) || !it->is_directory(ignored)) {
      ++*left_out;
    }
    if (error) {
      break;
    }
  }
  if (error) {
    Fail(folder, error.message());
  }
  std::sort(files.begin(), files.end());
  return files;
}

bool IsFolder(const std::string& path) {
  std::error_code ignored;
  return path != "-" && fs::is_directory(path, ignored);
}

}  // namespace fp_inspect

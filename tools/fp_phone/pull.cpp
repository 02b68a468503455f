// SPDX-License-Identifier: Apache-2.0
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "commands.h"

namespace fp_phone {
namespace {

namespace fs = std::filesystem;

constexpr int kNewMode = 0666;
constexpr size_t kBlock = 65536;

class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() { close(fd_); }
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  int Get() const { return fd_; }

 private:
  int fd_;
};

// No call follows a link, so nothing outside the phone is read, whatever the program has left
// there.
Descriptor OpenIn(const Descriptor& folder, const fs::path& name) {
  return Descriptor(
      openat(folder.Get(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
}

// Returns false.
bool ReportErrno(const std::string& path) {
  const bool is_link = errno == ELOOP;
  Complain("{}: {}", Printable(path),
           is_link ? "is a link, which pull does not follow" : strerror(errno));
  return false;
}

bool CopyContent(const Descriptor& from, int to, const std::string& device_path,
                 const fs::path& target) {
  std::string block(kBlock, '\0');
  for (;;) {
    const ssize_t size = read(from.Get(), block.data(), block.size());
    if (size <= 0) {
      return size == 0 || ReportErrno(device_path);
    }
    for (ssize_t done = 0; done < size;) {
      const ssize_t written = write(to, block.data() + done, static_cast<size_t>(size - done));
      if (written < 0) {
        return ReportErrno(target);
      }
      done += written;
    }
  }
}

bool CopyFile(const Descriptor& from, const std::string& device_path, const fs::path& target) {
  const int to = open(target.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kNewMode);
  if (to < 0) {
    return ReportErrno(target);
  }
  const bool is_copied = CopyContent(from, to, device_path, target);
  return close(to) == 0 ? is_copied : ReportErrno(target);
}

std::vector<std::string> NamesIn(const Descriptor& folder) {
  std::vector<std::string> names;
  DIR* const listing = fdopendir(openat(folder.Get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  while (const dirent* const entry = listing != nullptr ? readdir(listing) : nullptr) {
    const std::string name = entry->d_name;
    if (name != "." && name != ".." && name != ".fp_phone") {
      names.push_back(name);
    }
  }
  if (listing != nullptr) {
    closedir(listing);
  }
  std::sort(names.begin(), names.end());
  return names;
}

bool Copy(const Descriptor& from, const std::string& device_path, const fs::path& target);

bool CopyFolder(const Descriptor& from, const std::string& device_path, const fs::path& target) {
  std::error_code error;
  fs::create_directory(target, error);
  if (error) {
    Complain("{}: {}", Printable(target), error.message());
    return false;
  }
  bool is_good = true;
  for (const std::string& name : NamesIn(from)) {
    const std::string path = fmt::format("{}/{}", device_path, name);
    const Descriptor entry = OpenIn(from, name);
    is_good = (entry.Get() < 0 ? ReportErrno(path) : Copy(entry, path, target / name)) && is_good;
  }
  return is_good;
}

bool Copy(const Descriptor& from, const std::string& device_path, const fs::path& target) {
  struct stat status = {};
  fstat(from.Get(), &status);
  if (S_ISDIR(status.st_mode)) {
    return CopyFolder(from, device_path, target);
  }
  if (!S_ISREG(status.st_mode)) {
    Complain("{}: is neither a file nor a folder", Printable(device_path));
    return false;
  }
  return CopyFile(from, device_path, target);
}

// Whether what is copied would be copied into itself.
bool IsOnPhone(const fs::path& target, const fs::path& root) {
  const fs::path relative =
      fs::weakly_canonical(target).lexically_relative(fs::weakly_canonical(root));
  return !relative.empty() && *relative.begin() != "..";
}

}  // namespace

int Pull(const Options& options) {
  const fs::path path = fs::path(options.device_path).relative_path();
  if (options.device_path.front() != '/' ||
      std::find(path.begin(), path.end(), "..") != path.end()) {
    Complain("{}: a path of the phone begins with / and has no ..", Printable(options.device_path));
    return kFailed;
  }
  Descriptor from(open(options.root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  std::string device_path;
  fs::path name = "phone";
  for (const fs::path& part : path) {
    if (part.empty() || part == ".") {
      continue;
    }
    device_path += "/" + part.native();
    name = part;
    from = OpenIn(from, part);
    if (from.Get() < 0) {
      ReportErrno(device_path);
      return kFailed;
    }
  }
  const fs::path target = fs::is_directory(options.to) ? options.to / name : fs::path(options.to);
  if (IsOnPhone(target, options.root)) {
    Complain("{}: lies on the phone itself", Printable(target));
    return kFailed;
  }
  return Copy(from, device_path, target) ? kDone : kFailed;
}

}  // namespace fp_phone

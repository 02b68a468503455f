// SPDX-License-Identifier: Apache-2.0
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include <android-base/unique_fd.h>

#include "commands.h"

namespace fp_phone {
namespace {

namespace fs = std::filesystem;
using android::base::unique_fd;

constexpr int kNewMode = 0666;
constexpr size_t kBlock = 65536;

// No call follows a link, so nothing outside the phone is read, whatever the program has left
// there.
unique_fd OpenIn(const unique_fd& folder, const fs::path& name) {
  return unique_fd(
      openat(folder.get(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
}

// Returns false.
bool ReportErrno(const std::string& path) {
  const bool is_link = errno == ELOOP;
  PrintError("{}: {}", Printable(path),
             is_link ? "is a link, which pull does not follow" : strerror(errno));
  return false;
}

bool CopyContent(const unique_fd& from, int to, const std::string& device_path,
                 const fs::path& target) {
  std::string block(kBlock, '\0');
  for (;;) {
    const ssize_t size = read(from.get(), block.data(), block.size());
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

bool CopyFile(const unique_fd& from, const std::string& device_path, const fs::path& target) {
  const int to = open(target.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kNewMode);
  if (to < 0) {
    return ReportErrno(target);
  }
  const bool is_copied = CopyContent(from, to, device_path, target);
  return close(to) == 0 ? is_copied : ReportErrno(target);
}

bool ListNames(const unique_fd& folder, const std::string& device_path,
               std::vector<std::string>* names) {
  const int fd = openat(folder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  DIR* const listing = fd < 0 ? nullptr : fdopendir(fd);
  if (listing == nullptr) {
    return ReportErrno(device_path);
  }
  while (const dirent* const entry = readdir(listing)) {
    const std::string name = entry->d_name;
    const bool is_state = device_path.empty() && name == Options::kStateFolder;
    if (name != "." && name != ".." && !is_state) {
      names->push_back(name);
    }
  }
  closedir(listing);
  std::sort(names->begin(), names->end());
  return true;
}

bool Copy(const unique_fd& from, const std::string& device_path, const fs::path& target);

bool CopyFolder(const unique_fd& from, const std::string& device_path, const fs::path& target) {
  std::error_code error;
  fs::create_directory(target, error);
  if (error) {
    PrintError("{}: {}", Printable(target), error.message());
    return false;
  }
  std::vector<std::string> names;
  bool is_good = ListNames(from, device_path, &names);
  for (const std::string& name : names) {
    const std::string path = fmt::format("{}/{}", device_path, name);
    const unique_fd entry = OpenIn(from, name);
    is_good = (entry.get() < 0 ? ReportErrno(path) : Copy(entry, path, target / name)) && is_good;
  }
  return is_good;
}

bool Copy(const unique_fd& from, const std::string& device_path, const fs::path& target) {
  struct stat status = {};
  fstat(from.get(), &status);
  if (S_ISDIR(status.st_mode)) {
    return CopyFolder(from, device_path, target);
  }
  if (!S_ISREG(status.st_mode)) {
    PrintError("{}: is neither a file nor a folder", Printable(device_path));
    return false;
  }
  return CopyFile(from, device_path, target);
}

// Whether what is copied would be copied into itself.
bool IsOnPhone(const fs::path& target, const fs::path& root) {
  const fs::path relative =
      fs::weakly_canonical(fs::absolute(target)).lexically_relative(fs::weakly_canonical(root));
  return !relative.empty() && *relative.begin() != "..";
}

}  // namespace

int Pull(const Options& options) {
  const fs::path path = fs::path(options.device_path).relative_path();
  if (!options.device_path.starts_with('/') ||
      std::find(path.begin(), path.end(), "..") != path.end()) {
    PrintError("{}: a path of the phone begins with / and has no ..",
               Printable(options.device_path));
    return kFailed;
  }
  unique_fd from(open(options.root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  std::string device_path;
  fs::path name = "phone";
  for (const fs::path& part : path) {
    if (part.empty() || part == ".") {
      continue;
    }
    device_path += "/" + part.native();
    name = part;
    from = OpenIn(from, part);
    if (from.get() < 0) {
      ReportErrno(device_path);
      return kFailed;
    }
  }
  const fs::path target = fs::is_directory(options.to) ? options.to / name : fs::path(options.to);
  if (IsOnPhone(target, options.root)) {
    PrintError("{}: lies on the phone itself", Printable(target));
    return kFailed;
  }
  return Copy(from, device_path, target) ? kDone : kFailed;
}

}  // namespace fp_phone

// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <vector>

#include "commands.h"

namespace fp_phone {
namespace {

namespace fs = std::filesystem;

// As ls prints it.
std::string ModeText(mode_t mode) {
  const char kind = S_ISDIR(mode)    ? 'd'
                    : S_ISLNK(mode)  ? 'l'
                    : S_ISFIFO(mode) ? 'p'
                    : S_ISSOCK(mode) ? 's'
                    : S_ISREG(mode)  ? '-'
                                     : '?';
  std::string text(1, kind);
  for (mode_t bit = S_IRUSR, i = 0; i < 9; bit >>= 1, ++i) {
    text += (mode & bit) != 0 ? "rwx"[i % 3] : '-';
  }
  return text;
}

bool Print(const fs::path& path, const std::string& device_path) {
  struct stat status = {};
  if (lstat(path.c_str(), &status) != 0) {
    PrintError("{}: {}", Printable(device_path), strerror(errno));
    return false;
  }
  const std::string size = S_ISREG(status.st_mode) ? std::to_string(status.st_size) : "-";
  std::error_code ignored;
  const std::string target =
      S_ISLNK(status.st_mode) ? " -> " + fs::read_symlink(path, ignored).native() : "";
  fmt::print("{} {:>10} {}{}\n", ModeText(status.st_mode), size, Printable(device_path),
             Printable(target));
  return true;
}

// Prints what is in a folder, sorted, each folder followed by its content. Links are not followed.
bool PrintFolder(const Options& options, const fs::path& folder, const std::string& device_folder) {
  std::error_code error;
  std::vector<fs::path> entries;
  for (fs::directory_iterator i(folder, error), end; !error && i != end; i.increment(error)) {
    if (i->path() != options.StateFolder()) {
      entries.push_back(i->path());
    }
  }
  if (error) {
    PrintError("{}: {}", Printable(device_folder), error.message());
    return false;
  }
  std::sort(entries.begin(), entries.end());
  bool is_good = true;
  for (const fs::path& entry : entries) {
    const std::string device_path = device_folder + "/" + entry.filename().native();
    is_good = Print(entry, device_path) && is_good;
    if (fs::symlink_status(entry, error).type() == fs::file_type::directory) {
      is_good = PrintFolder(options, entry, device_path) && is_good;
    }
  }
  return is_good;
}

}  // namespace

int ShowTree(const Options& options) {
  return PrintFolder(options, options.root, "") ? kDone : kFailed;
}

}  // namespace fp_phone

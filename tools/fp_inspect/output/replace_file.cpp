// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <android-base/file.h>
#include <android-base/unique_fd.h>

#include "output/report.h"

namespace fp_inspect {
namespace {

mode_t UsualMode() {
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

}  // namespace

std::optional<std::string> ReplaceFile(const std::string& path, const std::string& content) {
  struct stat status = {};
  if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
    return "is not a regular file";
  }
  // A link stays a link, and the file that it names is replaced.
  std::error_code ignored;
  const std::filesystem::path target = std::filesystem::weakly_canonical(path, ignored);
  const std::string whole = ignored ? path : target.string();
  std::string temporary = whole + ".XXXXXX";
  const android::base::unique_fd file(mkostemp(temporary.data(), O_CLOEXEC));
  if (file < 0) {
    return strerror(errno);
  }
  if (!android::base::WriteStringToFd(content, file) || fchmod(file, UsualMode()) != 0 ||
      fsync(file) != 0 || rename(temporary.c_str(), whole.c_str()) != 0) {
    const std::string why = strerror(errno);
    unlink(temporary.c_str());
    return why;
  }
  return std::nullopt;
}

}  // namespace fp_inspect

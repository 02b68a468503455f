// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <climits>

namespace fp_host {

// Maps a path given to a system call to the host's path, without allocation.
class TreePath {
 public:
  explicit TreePath(const char* path);

  const char* Get() const { return redirected_ ? buffer_ : original_; }
  bool IsOnDevice() const { return redirected_; }

 private:
  const char* original_;
  bool redirected_;
  char buffer_[PATH_MAX + 1];  // a path that fills it is refused as too long
};

}  // namespace fp_host

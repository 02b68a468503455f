// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>

namespace fp_service {

// On a terminal, how far the day has come; a pipe gets none.
class Progress {
 public:
  explicit Progress(int total) : total_(total), shown_(isatty(STDERR_FILENO) != 0) {}
  ~Progress() { Clear(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void Step() {
    ++done_;
    if (shown_) {
      fmt::print(stderr, "\r{} of {} touches", done_, total_);
    }
  }
  void Clear() const {
    if (shown_) {
      fmt::print(stderr, "\r\033[K");
    }
  }

 private:
  int total_;
  int done_ = 0;
  bool shown_;
};

}  // namespace fp_service

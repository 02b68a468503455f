// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <string>

namespace android::fp_utils {

// Text built by printf-style appends in a buffer of N bytes, truncated silently to N - 1
// characters.
template <size_t N>
class BoundedText {
 public:
  __attribute__((format(printf, 2, 3))) void Append(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int wanted = vsnprintf(buffer_ + length_, N - length_, format, arguments);
    va_end(arguments);
    if (wanted > 0) {
      length_ = std::min(length_ + static_cast<size_t>(wanted), N - 1);
    }
  }

  std::string ToString() const { return {buffer_, length_}; }

 private:
  char buffer_[N];
  size_t length_ = 0;
};

}  // namespace android::fp_utils

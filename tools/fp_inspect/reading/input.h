// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <android-base/unique_fd.h>

namespace fp_inspect {

// An input that cannot be read; the text names it and says why.
class InputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reads an input through a buffer of fixed size, so that files of any size and pipes are read in
// the same way. "-" is the standard input. A named pipe without a writer is an error, so that the
// reader does not wait for one.
class ByteWindow {
 public:
  static constexpr size_t kCapacity = 1 << 20;

  explicit ByteWindow(const std::string& path);
  static ByteWindow OfBytes(std::string bytes);  // for tests and fuzzing

  // The bytes in the buffer, at least `wanted` of them (up to kCapacity) unless the input ends
  // first.
  std::string_view Fill(size_t wanted);
  void Drop(size_t count) { begin_ += count; }
  uint64_t GetOffset() const { return read_ - (end_ - begin_); }

 private:
  ByteWindow() = default;
  size_t Read(char* out, size_t room);

  std::string path_;
  android::base::unique_fd file_;
  std::string buffer_;
  size_t begin_ = 0;
  size_t end_ = 0;
  uint64_t read_ = 0;  // total bytes read
  bool at_end_ = false;
};

// The files of a folder and of the folders in it, sorted by path. Links to folders are not
// followed, and anything that is not a regular file is left out; `left_out` counts both.
std::vector<std::string> FilesBelow(const std::string& folder, size_t* left_out);

bool IsFolder(const std::string& path);

}  // namespace fp_inspect

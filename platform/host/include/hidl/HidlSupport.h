// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

#include <cutils/native_handle.h>
#include <utils/StrongPointer.h>

namespace android::hardware {

// A handle with descriptors that belong to the caller. Copies, which own duplicates of them, are
// not simulated.
struct hidl_handle {
  hidl_handle(const native_handle_t* handle) : mHandle(handle) {}  // NOLINT: implicit
  hidl_handle(const hidl_handle&) = delete;
  hidl_handle& operator=(const hidl_handle&) = delete;

  const native_handle_t* operator->() const { return mHandle; }
  const native_handle_t* getNativeHandle() const { return mHandle; }

 private:
  const native_handle_t* const mHandle;
};

// A text. Comparisons end at the first NUL.
struct hidl_string {
  hidl_string() = default;
  hidl_string(const char* text) : mText(text == nullptr ? "" : text) {}  // NOLINT: implicit
  hidl_string(const std::string& text) : mText(text) {}                  // NOLINT: implicit

  const char* c_str() const { return mText.c_str(); }
  operator std::string() const { return mText; }  // NOLINT: implicit
  bool operator==(const hidl_string& other) const { return strcmp(c_str(), other.c_str()) == 0; }

 private:
  std::string mText;
};

namespace details {

// A wrong index, which the platform does not notice, ends the process.
inline size_t CheckIndex(size_t index, size_t size) {
  if (index >= size) {
    abort();
  }
  return index;
}

}  // namespace details

// A sequence.
template <typename T>
struct hidl_vec {
  hidl_vec() = default;
  hidl_vec(const std::initializer_list<T> list) : mElements(list) {}
  hidl_vec(const std::vector<T>& other) : mElements(other) {}  // NOLINT: implicit

  void resize(size_t size) { mElements.resize(size); }
  size_t size() const { return mElements.size(); }
  const T& operator[](size_t index) const { return mElements[details::CheckIndex(index, size())]; }
  T* begin() { return mElements.data(); }
  T* end() { return begin() + size(); }
  const T* begin() const { return mElements.data(); }
  const T* end() const { return begin() + size(); }
  operator std::vector<T>() const { return mElements; }  // NOLINT: implicit

 private:
  std::vector<T> mElements;
};

// A fixed number of elements, uninitialised unless the array is value-initialised.
template <typename T, size_t SIZE1>
struct hidl_array {
  T& operator[](size_t index) { return mElements[details::CheckIndex(index, SIZE1)]; }
  const T& operator[](size_t index) const { return mElements[details::CheckIndex(index, SIZE1)]; }
  static constexpr size_t size() { return SIZE1; }

 private:
  std::array<T, SIZE1> mElements;
};

}  // namespace android::hardware

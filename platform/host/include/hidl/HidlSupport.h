// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <cutils/native_handle.h>
#include <utils/StrongPointer.h>

namespace android::hardware {

// A handle with descriptors: borrowed when made from a pointer, a duplicate of its own when copied.
struct hidl_handle {
  hidl_handle();
  hidl_handle(const native_handle_t* handle);  // NOLINT: implicit
  hidl_handle(const hidl_handle& other);
  hidl_handle(hidl_handle&& other) noexcept;
  ~hidl_handle();

  hidl_handle& operator=(const hidl_handle& other);
  hidl_handle& operator=(const native_handle_t* native_handle);
  hidl_handle& operator=(hidl_handle&& other) noexcept;

  void setTo(native_handle_t* handle, bool shouldOwn = false);

  const native_handle_t* operator->() const { return mHandle; }
  operator const native_handle_t*() const { return mHandle; }  // NOLINT: implicit
  const native_handle_t* getNativeHandle() const { return mHandle; }

 private:
  void freeHandle();

  const native_handle_t* mHandle = nullptr;
  bool mOwnsHandle = false;
};

// A text. Comparisons end at the first NUL.
struct hidl_string {
  hidl_string() = default;
  hidl_string(const char* text) : mText(text == nullptr ? "" : text) {}  // NOLINT: implicit
  hidl_string(const char* text, size_t length) : mText(text, length) {}
  hidl_string(const std::string& text) : mText(text) {}  // NOLINT: implicit

  const char* c_str() const { return mText.c_str(); }
  size_t size() const { return mText.size(); }
  bool empty() const { return mText.empty(); }
  void clear() { mText.clear(); }
  operator std::string() const { return mText; }  // NOLINT: implicit

 private:
  std::string mText;
};

#define HIDL_STRING_OPERATOR(OP)                                            \
  inline bool operator OP(const hidl_string& lhs, const hidl_string& rhs) { \
    return strcmp(lhs.c_str(), rhs.c_str()) OP 0;                           \
  }                                                                         \
  inline bool operator OP(const char* lhs, const hidl_string& rhs) {        \
    return strcmp(lhs, rhs.c_str()) OP 0;                                   \
  }                                                                         \
  inline bool operator OP(const hidl_string& lhs, const char* rhs) {        \
    return strcmp(lhs.c_str(), rhs) OP 0;                                   \
  }
HIDL_STRING_OPERATOR(==)
HIDL_STRING_OPERATOR(!=)
HIDL_STRING_OPERATOR(<)
HIDL_STRING_OPERATOR(<=)
HIDL_STRING_OPERATOR(>)
HIDL_STRING_OPERATOR(>=)
#undef HIDL_STRING_OPERATOR

inline std::ostream& operator<<(std::ostream& os, const hidl_string& str) {
  return os << str.c_str();
}

// A sequence whose elements are its own or, after setToExternal(), someone else's.
template <typename T>
struct hidl_vec {
  using value_type = T;
  using iterator = T*;
  using const_iterator = const T*;

  hidl_vec() = default;
  explicit hidl_vec(size_t size) { resize(size); }
  hidl_vec(const std::initializer_list<T> list) { copyFrom(list.begin(), list.size()); }
  hidl_vec(const std::vector<T>& other) { copyFrom(other.begin(), other.size()); }  // NOLINT
  template <typename InputIterator,
            typename = typename std::iterator_traits<InputIterator>::iterator_category>
  hidl_vec(InputIterator first, InputIterator last) {
    copyFrom(first, static_cast<size_t>(std::distance(first, last)));
  }
  hidl_vec(const hidl_vec& other) { copyFrom(other.begin(), other.size()); }
  hidl_vec(hidl_vec&& other) noexcept { swap(other); }
  ~hidl_vec() { free(); }

  hidl_vec& operator=(const hidl_vec& other) {
    if (this != &other) {
      hidl_vec copy(other);
      swap(copy);
    }
    return *this;
  }
  hidl_vec& operator=(hidl_vec&& other) noexcept {
    hidl_vec taken(std::move(other));
    swap(taken);
    return *this;
  }

  void setToExternal(T* data, size_t size, bool shouldOwn = false) {
    free();
    mBuffer = data;
    mSize = size;
    mOwnsBuffer = shouldOwn;
  }

  void resize(size_t size) {
    T* buffer = new T[size]();
    std::copy_n(mBuffer, std::min(size, mSize), buffer);
    setToExternal(buffer, size, true);
  }

  T* data() { return mBuffer; }
  const T* data() const { return mBuffer; }
  size_t size() const { return mSize; }
  T& operator[](size_t index) { return mBuffer[index]; }
  const T& operator[](size_t index) const { return mBuffer[index]; }
  iterator begin() { return mBuffer; }
  iterator end() { return mBuffer + mSize; }
  const_iterator begin() const { return mBuffer; }
  const_iterator end() const { return mBuffer + mSize; }

  operator std::vector<T>() const { return std::vector<T>(begin(), end()); }  // NOLINT: implicit

  bool operator==(const hidl_vec& other) const {
    return std::equal(begin(), end(), other.begin(), other.end());
  }
  bool operator!=(const hidl_vec& other) const { return !(*this == other); }

 private:
  template <typename Iterator>
  void copyFrom(Iterator first, size_t size) {
    resize(size);
    std::copy_n(first, size, mBuffer);
  }
  void free() {
    if (mOwnsBuffer) {
      delete[] mBuffer;
    }
  }
  void swap(hidl_vec& other) {
    std::swap(mBuffer, other.mBuffer);
    std::swap(mSize, other.mSize);
    std::swap(mOwnsBuffer, other.mOwnsBuffer);
  }

  T* mBuffer = nullptr;
  size_t mSize = 0;
  bool mOwnsBuffer = false;
};

// A fixed number of elements, uninitialised unless the array is value-initialised.
template <typename T, size_t SIZE1>
struct hidl_array {
  hidl_array() = default;
  hidl_array(const T* source) { std::copy_n(source, SIZE1, mBuffer); }         // NOLINT: implicit
  hidl_array(const std::array<T, SIZE1>& array) : hidl_array(array.data()) {}  // NOLINT: implicit

  hidl_array& operator=(const std::array<T, SIZE1>& array) {
    return *this = hidl_array(array.data());
  }

  T* data() { return mBuffer; }
  const T* data() const { return mBuffer; }
  T& operator[](size_t index) { return mBuffer[index]; }
  const T& operator[](size_t index) const { return mBuffer[index]; }
  static constexpr size_t size() { return SIZE1; }
  operator std::array<T, SIZE1>() const {  // NOLINT: implicit
    std::array<T, SIZE1> array;
    std::copy_n(mBuffer, SIZE1, array.begin());
    return array;
  }

  bool operator==(const hidl_array& other) const {
    return std::equal(mBuffer, mBuffer + SIZE1, other.mBuffer);
  }
  bool operator!=(const hidl_array& other) const { return !(*this == other); }

 private:
  T mBuffer[SIZE1];
};

}  // namespace android::hardware

// SPDX-License-Identifier: Apache-2.0
#include <utility>

#include <hidl/HidlSupport.h>

namespace android::hardware {

hidl_handle::hidl_handle() = default;

hidl_handle::hidl_handle(const native_handle_t* handle) : mHandle(handle) {}

hidl_handle::hidl_handle(const hidl_handle& other) { *this = other; }

hidl_handle::hidl_handle(hidl_handle&& other) noexcept { *this = std::move(other); }

hidl_handle::~hidl_handle() { freeHandle(); }

hidl_handle& hidl_handle::operator=(const hidl_handle& other) {
  if (this != &other) {
    const native_handle_t* handle = other.mHandle;
    setTo(handle == nullptr ? nullptr : native_handle_clone(handle), true);
  }
  return *this;
}

hidl_handle& hidl_handle::operator=(const native_handle_t* native_handle) {
  freeHandle();
  mHandle = native_handle;
  return *this;
}

hidl_handle& hidl_handle::operator=(hidl_handle&& other) noexcept {
  if (this != &other) {
    freeHandle();
    mHandle = std::exchange(other.mHandle, nullptr);
    mOwnsHandle = std::exchange(other.mOwnsHandle, false);
  }
  return *this;
}

void hidl_handle::setTo(native_handle_t* handle, bool should_own) {
  freeHandle();
  mHandle = handle;
  mOwnsHandle = should_own;
}

void hidl_handle::freeHandle() {
  if (mOwnsHandle && mHandle != nullptr) {
    native_handle_close(mHandle);
    native_handle_delete(const_cast<native_handle_t*>(mHandle));
  }
  mHandle = nullptr;
  mOwnsHandle = false;
}

}  // namespace android::hardware

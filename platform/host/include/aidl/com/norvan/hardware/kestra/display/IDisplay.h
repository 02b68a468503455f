// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include <android/binder_auto_utils.h>
#include <android/binder_interface_utils.h>

namespace aidl::com::norvan::hardware::kestra::display {

// The vendor's display HAL; of its operations only the one that the library uses.
class IDisplay : public ::ndk::ICInterface {
 public:
  static const char* descriptor;

  // The implementation behind a local binder, a new proxy for a remote one; null for null and for
  // an object of another interface.
  static std::shared_ptr<IDisplay> fromBinder(const ::ndk::SpAIBinder& binder);

  // Lights the area over the sensor brightly, or ends that.
  virtual ::ndk::ScopedAStatus setLhbmState(bool in_enabled) = 0;
};

}  // namespace aidl::com::norvan::hardware::kestra::display

// SPDX-License-Identifier: Apache-2.0
#include <aidl/com/norvan/hardware/kestra/display/BpDisplay.h>

#include "fp_host/aidl_interface.h"

namespace aidl::com::norvan::hardware::kestra::display {

const char* IDisplay::descriptor = "com.norvan.hardware.kestra.display.IDisplay";

std::shared_ptr<IDisplay> IDisplay::fromBinder(const ndk::SpAIBinder& binder) {
  return fp_host::binder::FromBinder<IDisplay, BpDisplay>(binder);
}

ndk::ScopedAStatus BpDisplay::setLhbmState(bool in_enabled) {
  return fp_host::binder::Transact(asBinder(), [&](ndk::ICInterface& object) {
    return static_cast<IDisplay&>(object).setLhbmState(in_enabled);
  });
}

}  // namespace aidl::com::norvan::hardware::kestra::display

// SPDX-License-Identifier: Apache-2.0
#include <aidl/com/norvan/hardware/kestra/display/BnDisplay.h>
#include <aidl/com/norvan/hardware/kestra/display/BpDisplay.h>

#include "binder/interface.h"

namespace aidl::com::norvan::hardware::kestra::display {
namespace {

const AIBinder_Class* DisplayClass() {
  static const AIBinder_Class* const clazz = fp_host::binder::DefineClass(IDisplay::descriptor);
  return clazz;
}

}  // namespace

const char* IDisplay::descriptor = "com.norvan.hardware.kestra.display.IDisplay";
const int32_t IDisplay::version;

IDisplay::IDisplay() = default;
IDisplay::~IDisplay() = default;

std::shared_ptr<IDisplay> IDisplay::fromBinder(const ndk::SpAIBinder& binder) {
  return fp_host::binder::FromBinder<IDisplay, BpDisplay>(binder, DisplayClass());
}

BnDisplay::BnDisplay() = default;
BnDisplay::~BnDisplay() = default;

ndk::SpAIBinder BnDisplay::createBinder() {
  return ndk::SpAIBinder(AIBinder_new(DisplayClass(), static_cast<ICInterface*>(this)));
}

BpDisplay::BpDisplay(const ndk::SpAIBinder& binder) : BpCInterface(binder) {}
BpDisplay::~BpDisplay() = default;

ndk::ScopedAStatus BpDisplay::setLhbmState(bool in_enabled) {
  return fp_host::binder::Transact(asBinder().get(), [&](ndk::ICInterface& object) {
    return static_cast<IDisplay&>(object).setLhbmState(in_enabled);
  });
}

}  // namespace aidl::com::norvan::hardware::kestra::display

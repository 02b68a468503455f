// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <aidl/com/norvan/hardware/kestra/display/IDisplay.h>

namespace aidl::com::norvan::hardware::kestra::display {

class BpDisplay : public ::ndk::BpCInterface<IDisplay> {
 public:
  using BpCInterface::BpCInterface;

  ::ndk::ScopedAStatus setLhbmState(bool in_enabled) override;
};

}  // namespace aidl::com::norvan::hardware::kestra::display

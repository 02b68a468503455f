// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <aidl/com/norvan/hardware/kestra/display/IDisplay.h>

namespace aidl::com::norvan::hardware::kestra::display {

class BnDisplay : public ::ndk::BnCInterface<IDisplay> {};

}  // namespace aidl::com::norvan::hardware::kestra::display

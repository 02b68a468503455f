// SPDX-License-Identifier: Apache-2.0
#include "hidl/remote.h"

#include <utility>

#include <hidl/HidlTransportSupport.h>

#include "device/misuse.h"
#include "ipc/pool.h"

namespace fp_host::hidl {
Status Remote::Call(const std::function<void()>& transaction) const {
  if (process_ == nullptr) {
    transaction();
    return Status::ok();
  }
  return Status::fromStatusT(process_->Call(transaction) ? android::OK : android::DEAD_OBJECT);
}

Status Remote::CallOneway(std::function<void()> transaction) const {
  const auto is_alive = [process = process_] { return process == nullptr || process->IsAlive(); };
  if (!is_alive()) {
    return Status::fromStatusT(android::DEAD_OBJECT);
  }
  ipc::HidlPool().Start();  // a process that receives calls needs a pool
  ipc::HidlPool().Post([is_alive, transaction = std::move(transaction)] {
    if (is_alive()) {
      transaction();
    }
  });
  return Status::ok();
}

void RequireOneAnswer(bool holds) {
  if (!holds) {
    AbortForMisuse("A HIDL server has to call its result callback exactly once.");
  }
}

}  // namespace fp_host::hidl

namespace android::hardware {

details::return_status::~return_status() {
  if (!mCheckedStatus && !mStatus.isOk()) {
    fp_host::AbortForMisuse("A failed HIDL return status was destroyed unchecked.");
  }
}

bool interfacesEqual(const sp<hidl::base::V1_0::IBase>& left,
                     const sp<hidl::base::V1_0::IBase>& right) {
  if (left == nullptr || right == nullptr || !left->isRemote() || !right->isRemote()) {
    return left == right;
  }
  return left->getSimulatedObject() == right->getSimulatedObject();
}

}  // namespace android::hardware

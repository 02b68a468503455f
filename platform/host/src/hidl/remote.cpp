// SPDX-License-Identifier: Apache-2.0
#include "hidl/remote.h"

#include <cstdlib>

#include <android/log.h>
#include <hidl/HidlTransportSupport.h>

#include "ipc/pool.h"

namespace fp_host::hidl {

Status Remote::Call(const std::function<void()>& serve) const {
  if (home_ == nullptr) {
    serve();
    return Status::ok();
  }
  return Status::fromStatusT(home_->Call(serve) ? android::OK : android::DEAD_OBJECT);
}

Status Remote::CallOneway(std::function<void()> serve) const {
  if (home_ != nullptr && !home_->IsAlive()) {
    return Status::fromStatusT(android::DEAD_OBJECT);
  }
  ipc::HidlPool().Start();  // whoever receives calls has a pool
  ipc::HidlPool().Post(std::move(serve));
  return Status::ok();
}

void CheckAnswered(bool is_right) {
  if (!is_right) {
    __android_log_print(ANDROID_LOG_FATAL, "HidlTransport",
                        "A HIDL server must call its callback exactly once");
    abort();
  }
}

}  // namespace fp_host::hidl

namespace android::hardware {

bool interfacesEqual(const sp<hidl::base::V1_0::IBase>& left,
                     const sp<hidl::base::V1_0::IBase>& right) {
  if (left == nullptr || right == nullptr || !left->isRemote() || !right->isRemote()) {
    return left == right;
  }
  return left->GetRemoteObject() != nullptr && left->GetRemoteObject() == right->GetRemoteObject();
}

}  // namespace android::hardware

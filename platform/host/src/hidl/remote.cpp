// SPDX-License-Identifier: Apache-2.0
#include "hidl/remote.h"

#include <cstdlib>

#include <android/log.h>
#include <hidl/HidlTransportSupport.h>

#include "ipc/pool.h"

namespace fp_host::hidl {
namespace {

[[noreturn]] void Abort(const char* reason) {
  __android_log_print(ANDROID_LOG_FATAL, "HidlTransport", "%s", reason);
  abort();
}

}  // namespace

Status Remote::Call(const std::function<void()>& serve) const {
  if (home_ == nullptr) {
    serve();
    return Status::ok();
  }
  return Status::fromStatusT(home_->Call(serve) ? android::OK : android::DEAD_OBJECT);
}

Status Remote::CallOneway(std::function<void()> serve) const {
  const auto is_alive = [home = home_] { return home == nullptr || home->IsAlive(); };
  if (!is_alive()) {
    return Status::fromStatusT(android::DEAD_OBJECT);
  }
  ipc::HidlPool().Start();  // a process that receives calls needs a pool
  ipc::HidlPool().Post([is_alive, serve = std::move(serve)] {
    if (is_alive()) {
      serve();
    }
  });
  return Status::ok();
}

void CheckAnswered(bool is_right) {
  if (!is_right) {
    Abort("A HIDL server must call its callback exactly once");
  }
}

}  // namespace fp_host::hidl

namespace android::hardware {

details::return_status::~return_status() {
  if (!mCheckedStatus && !mStatus.isOk()) {
    fp_host::hidl::Abort("Failed HIDL return status not checked");
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

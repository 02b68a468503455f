// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <tuple>
#include <utility>

#include <android/hidl/base/1.0/IBase.h>
#include <hidl/Status.h>

#include "ipc/process.h"

namespace fp_host::hidl {

using android::sp;
using android::hardware::Return;
using android::hardware::Status;
using android::hidl::base::V1_0::IBase;

// A service as the service manager stores it.
struct Entry {
  sp<IBase> object;
  std::shared_ptr<ipc::Process> process;
};

// The remote object that a proxy refers to.
class Remote {
 public:
  // `process` is the simulated process of the object, or null for this one.
  Remote(sp<IBase> object, std::shared_ptr<ipc::Process> process)
      : object_(std::move(object)), process_(std::move(process)) {}
  virtual ~Remote() = default;

  const sp<IBase>& GetObject() const { return object_; }

  // Runs `transaction` as a call into the object's process. Returns OK or DEAD_OBJECT.
  Status Call(const std::function<void()>& transaction) const;
  // A one-way call: runs on the thread of the HIDL pool, unless the object's process dies first.
  Status CallOneway(std::function<void()> transaction) const;

 private:
  const sp<IBase> object_;
  const std::shared_ptr<ipc::Process> process_;
};

// Aborts if false: an implementation must call its result callback exactly once.
void RequireOneAnswer(bool holds);

// A call that returns its results through a callback, which runs once, or never if the transport
// fails.
template <typename... RESULTS, typename TRANSACTION>
Return<void> Query(const Remote& remote, const std::function<void(const RESULTS&...)>& callback,
                   TRANSACTION transaction) {
  std::optional<std::tuple<RESULTS...>> answer;
  const Status status = remote.Call([&] {
    const Return<void> result = transaction([&](const RESULTS&... results) {
      RequireOneAnswer(!answer.has_value());
      answer.emplace(results...);
    });
    RequireOneAnswer(result.isOk() && answer.has_value());
  });
  if (!status.isOk()) {
    return status;
  }
  std::apply(callback, *answer);
  return android::hardware::Void();
}

// The base of all proxies.
template <typename INTERFACE>
class Proxy : public INTERFACE, public Remote {
 public:
  using Remote::Remote;

  bool isRemote() const override { return true; }
  const IBase* getSimulatedObject() const override { return GetObject().get(); }

 protected:
  INTERFACE& Get() const { return static_cast<INTERFACE&>(*GetObject()); }
};

}  // namespace fp_host::hidl

// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/display_controller.h"

#include <cerrno>
#include <chrono>
#include <map>
#include <string>
#include <utility>

// Traced with the input events that cause the switch and with the HAL that makes it.
#define ATRACE_TAG (ATRACE_TAG_INPUT | ATRACE_TAG_HAL)

#include <aidl/com/norvan/hardware/kestra/display/IDisplay.h>
#include <android/binder_auto_utils.h>
#include <android/binder_ibinder.h>
#include <android/binder_manager.h>
#include <android/binder_status.h>
#include <utils/Trace.h>

#include "common/log.h"
#include "connectors/liveness_guard.h"
#include "fp_utils/critical_errors.h"

namespace android::fp_utils {
namespace {

using aidl::com::norvan::hardware::kestra::display::IDisplay;

constexpr char kTag[] = "DisplayController";

using Clock = std::chrono::steady_clock;

long long MillisecondsSince(Clock::time_point start) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

// Finds the guard of a controller. A death notification can arrive after its recipient was deleted,
// when the controller in its cookie may no longer exist, so the cookie is used only as a key. The
// instance is never destroyed, because notifications can arrive until the process ends.
class LiveControllers {
 public:
  static LiveControllers& Get() {
    static auto* const live = new LiveControllers;
    return *live;
  }

  void Add(const void* controller) {
    const std::lock_guard lock(mutex_);
    guards_[controller] = std::make_shared<LivenessGuard>();
  }

  // Null if the controller does not exist.
  std::shared_ptr<LivenessGuard> Find(const void* controller) {
    const std::lock_guard lock(mutex_);
    const auto entry = guards_.find(controller);
    return entry == guards_.end() ? nullptr : entry->second;
  }

  std::shared_ptr<LivenessGuard> Take(const void* controller) {
    const std::lock_guard lock(mutex_);
    return std::move(guards_.extract(controller).mapped());
  }

 private:
  std::mutex mutex_;
  std::map<const void*, std::shared_ptr<LivenessGuard>> guards_ FP_GUARDED_BY(mutex_);
};

}  // namespace

DisplayController::DisplayController() { LiveControllers::Get().Add(this); }

DisplayController::~DisplayController() {
  LiveControllers::Get().Take(this)->Invalidate();
  AIBinder_DeathRecipient_delete(death_recipient_);
}

int DisplayController::SetLhbm(bool on, unsigned int* elapsed) {
  ATRACE_NAME("SetLhbm");
  const std::lock_guard lock(mutex_);
  if (elapsed != nullptr) {
    *elapsed = 0;
  }
  const Clock::time_point start = Clock::now();
  if (lhbm_state_ == static_cast<int32_t>(on)) {
    FP_LOG_DEBUG(kTag, "[%s] Lhbm is already %d", "SetLhbm", lhbm_state_);
    return 0;
  }
  if (ConnectDisplayHal() != 0) {
    FP_LOG_ERROR(kTag, "[%s] Failed to connect to displayHAL", "SetLhbm");
    return -ENODEV;
  }
  FP_LOG_DEBUG(kTag, "[%s]: Turning %s lhbm", "SetLhbm", on ? "on" : "off");
  if (!Switch(on)) {
    return STATUS_FAILED_TRANSACTION;
  }
  const long long took = MillisecondsSince(start);
  FP_LOG_DEBUG(kTag, "[%s]: Successfully turned %s lhbm, elapsed %lld ms", "SetLhbm",
               on ? "on" : "off", took);
  if (elapsed != nullptr) {
    *elapsed = static_cast<unsigned int>(took);
  }
  lhbm_state_ = static_cast<int32_t>(on);
  return 0;
}

bool DisplayController::Switch(bool on) {
  // On a device without a display service there is no connection, so the switch fails.
  if (display_ != nullptr && display_->setLhbmState(on).isOk()) {
    return true;
  }
  FP_LOG_ERROR(kTag, "[%s] Failed to setLhbmState %d", "SetLhbm", static_cast<int>(on));
  if (on) {
    // Only a failed switch-on spoils a capture. A display that stays bright is visible to the user.
    CriticalErrors::GetInstance().AddErrorEvent(
        std::make_shared<ErrorEvent>("failed to enable lhbm"));
  }
  return false;
}

int DisplayController::ConnectDisplayHal()
    FP_NO_THREAD_SAFETY_ANALYSIS {  // the caller holds the lock
  if (display_ != nullptr) {
    return 0;
  }
  const std::string instance = std::string(IDisplay::descriptor) + "/default";
  if (!AServiceManager_isDeclared(instance.c_str())) {
    FP_LOG_ERROR(kTag, "IDisplay service %s is not declared.", instance.c_str());
    return 0;
  }
  const ndk::SpAIBinder binder(AServiceManager_waitForService(instance.c_str()));
  if (binder.get() == nullptr) {
    FP_LOG_ERROR(kTag, "Failed to get IDisplay binder for %s!", instance.c_str());
    return -ENODEV;
  }
  display_ = IDisplay::fromBinder(binder);
  if (display_ == nullptr) {
    FP_LOG_ERROR(kTag, "Failed to get IDisplay service for %s!", instance.c_str());
    return -ENODEV;
  }
  death_recipient_ = AIBinder_DeathRecipient_new(BinderOnDeath);
  AIBinder_linkToDeath(binder.get(), death_recipient_, this);
  FP_LOG_DEBUG(kTag, "[%s] Successfully connected to IDisplay service.", "ConnectDisplayHal");
  return 0;
}

void DisplayController::BinderOnDeath(void* cookie) {
  if (const std::shared_ptr<LivenessGuard> guard = LiveControllers::Get().Find(cookie)) {
    guard->RunIfAlive([cookie] { static_cast<DisplayController*>(cookie)->BinderDied(); });
  }
}

void DisplayController::BinderDied() {
  FP_LOG_DEBUG(kTag, "[%s] Display HAL has died.", "BinderDied");
  const std::lock_guard lock(mutex_);
  AIBinder_DeathRecipient_delete(death_recipient_);
  death_recipient_ = nullptr;
  display_ = nullptr;
}

}  // namespace android::fp_utils

// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/thermal.h"

#include <unistd.h>

#include <cerrno>
#include <string>
#include <utility>

#include <aidl/android/hardware/thermal/IThermal.h>
#include <android/binder_auto_utils.h>
#include <android/binder_manager.h>
#include <android/hardware/thermal/2.0/IThermal.h>
#include <utils/SystemClock.h>
#include <utils/Thread.h>

#include "common/log.h"
#include "connectors/liveness_guard.h"
#include "fp_utils/thermal_hidl_wrapper.h"

namespace android::fp_utils {
namespace {

using hardware::hidl_vec;
using hardware::thermal::V1_0::ThermalStatus;
using hardware::thermal::V1_0::ThermalStatusCode;
using hardware::thermal::V2_0::IThermal;
using hardware::thermal::V2_0::Temperature;
using hardware::thermal::V2_0::TemperatureType;

constexpr char kTag[] = "FpThermal";

// The constructor runs inside GetInstance() on a HAL thread and must not delay it.
constexpr int64_t kConnectionWaitMs = 10;
constexpr useconds_t kConnectionPollUs = 1000;

// The AIDL service behind the HIDL interface, or null.
sp<IThermal> ConnectAidlService() {
  using AidlThermal = aidl::android::hardware::thermal::IThermal;
  const std::string instance = std::string(AidlThermal::descriptor) + "/default";
  if (!AServiceManager_isDeclared(instance.c_str())) {
    FP_LOG_WARN(kTag, "Thermal AIDL service is not declared");
    return nullptr;
  }
  std::shared_ptr<AidlThermal> service =
      AidlThermal::fromBinder(ndk::SpAIBinder(AServiceManager_waitForService(instance.c_str())));
  if (service == nullptr) {
    FP_LOG_ERROR(kTag, "Unable to get Thermal AIDL service");
    return nullptr;
  }
  return sp<IThermal>(new aidl::android::hardware::thermal::ThermalHidlWrapper(std::move(service)));
}

}  // namespace

// Connects once and ends.
class Thermal::ConnectThermalHalThread : public Thread {
 public:
  ConnectThermalHalThread(Thermal* thermal_monitor, std::shared_ptr<LivenessGuard> liveness)
      : thermal_monitor_(thermal_monitor), liveness_(std::move(liveness)) {}

 private:
  bool threadLoop() override {
    FP_LOG_DEBUG(kTag, "%s starting", "threadLoop");
    // Both look-ups may wait for a service that never starts. They run without a lock, so that
    // GetCpuSeverity() does not wait for them.
    sp<IThermal> thermal = ConnectAidlService();
    if (thermal == nullptr) {
      thermal = IThermal::getService("default", false);
    }
    if (thermal == nullptr) {
      FP_LOG_ERROR(kTag, "[%s] Failed to connect to Thermal HAL service", "threadLoop");
      return false;
    }
    liveness_->RunIfAlive([&] {
      const std::lock_guard lock(thermal_monitor_->mutex_);
      thermal_monitor_->thermal_ = std::move(thermal);
      thermal_monitor_->connected_ = true;
    });
    FP_LOG_DEBUG(kTag, "[%s] Successfully connected to Thermal service.", "threadLoop");
    FP_LOG_DEBUG(kTag, "%s exiting", "threadLoop");
    return false;
  }

  Thermal* const thermal_monitor_;  // Not owned; reached through liveness_ alone.
  const std::shared_ptr<LivenessGuard> liveness_;
};

Thermal& Thermal::GetInstance() {
  static auto* const instance = new Thermal;
  return *instance;
}

Thermal::Thermal() : liveness_(std::make_shared<LivenessGuard>()) {
  connect_thermal_hal_thread_ =
      sp<ConnectThermalHalThread>(new ConnectThermalHalThread(this, liveness_));
  connect_thermal_hal_thread_->run("ConnectThermalHalThread", 0, 0);
  FP_LOG_DEBUG(kTag, "%s: Waiting for thermal hal connected.", "Thermal");
  const int64_t start = elapsedRealtime();
  while (!connected_) {
    usleep(kConnectionPollUs);
    if (elapsedRealtime() - start >= kConnectionWaitMs) {
      FP_LOG_ERROR(kTag, "%s: The thermal hal is not connected.", "Thermal");
      return;
    }
  }
  FP_LOG_DEBUG(kTag, "%s: The thermal hal is connected.", "Thermal");
}

// The worker may still be running, but no longer uses this object.
Thermal::~Thermal() { liveness_->Invalidate(); }

int32_t Thermal::GetCpuSeverity() {
  const std::lock_guard lock(mutex_);
  if (thermal_ == nullptr) {
    FP_LOG_ERROR(kTag, "[%s] Failed to connect to Thermal HAL", "GetCpuSeverity");
    return -ENODEV;
  }
  int32_t severity = 0;
  // Despite its name, this operation reads the skin sensor: the system throttles by its
  // temperature.
  const auto result = thermal_->getCurrentTemperatures(
      true, TemperatureType::SKIN,
      [&severity](const ThermalStatus& status, const hidl_vec<Temperature>& temperatures) {
        if (status.code != ThermalStatusCode::SUCCESS || temperatures.size() == 0) {
          return;
        }
        const Temperature& first = temperatures[0];
        FP_LOG_DEBUG(kTag, "Name: %s", first.name.c_str());
        FP_LOG_DEBUG(kTag, "value: %f", first.value);
        severity = static_cast<int32_t>(first.throttlingStatus);
        FP_LOG_DEBUG(kTag, "ThrottlingSeverity: %d", severity);
      });
  // A dead HAL counts as no throttling. Without isOk() a failed result aborts the process.
  static_cast<void>(result.isOk());
  return severity;
}

}  // namespace android::fp_utils

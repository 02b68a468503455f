// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/sensor_listener.h"

#include <algorithm>
#include <cerrno>
#include <string_view>

#include "common/log.h"
#include "connectors/lock_unless.h"
#include "connectors/sensor_polling_worker.h"
#include "connectors/sensor_queue.h"

namespace android::fp_utils {
namespace {

constexpr char kTag[] = "SensorListener";

// Indexed by SensorListener::SensorType.
constexpr const char* kStringTypes[] = {"android.sensor.light", "com.norvan.sensor.long_press"};

constexpr int kWaitForever = -1;

bool IsKnown(SensorListener::SensorType type) {
  return type >= 0 && static_cast<size_t>(type) < SensorListener::kSensorTypes;
}

}  // namespace

SensorListener::SensorListener() = default;

SensorListener::~SensorListener() { Disconnect(); }

void SensorListener::Disconnect() {
  const std::lock_guard lock(mutex_);
  if (IsOnOwnWorker()) {
    sensor_polling_worker_thread_->requestExit();
  }
  StopWorker();
  if (sensor_manager_ == nullptr) {
    return;
  }
  for (size_t i = 0; i < kSensorTypes; ++i) {
    if (sampling_[i]) {
      ASensorEventQueue_disableSensor(event_queue_, sensors_[i]);
    }
  }
  ASensorManager_destroyEventQueue(sensor_manager_, event_queue_);
}

int32_t SensorListener::StartSampling(SensorType type) {
  if (!IsKnown(type)) {
    FP_LOG_ERROR(kTag, "sensor[%d] is not available.", type);
    return -ENOMEM;
  }
  if (!LockUnlessEnding()) {
    FP_LOG_ERROR(kTag, "Failed to connect sensor manager.");
    return -ENOMEM;
  }
  const std::lock_guard lock(mutex_, std::adopt_lock);
  if (sampling_[type]) {
    return 0;
  }
  if (!ConnectSensorManagerIfNeeded()) {
    FP_LOG_ERROR(kTag, "Failed to connect sensor manager.");
    return -ENOMEM;
  }
  if (sensors_[type] == nullptr) {
    FP_LOG_ERROR(kTag, "sensor[%d] is not available.", type);
    return -ENOMEM;
  }
  const int error = RegisterSensor(event_queue_, sensors_[type]);
  if (error != 0) {
    FP_LOG_ERROR(kTag, "%s: Failed to register sensor[%d], err=%d.", "StartSampling", type, error);
    return error;
  }
  sampling_[type] = true;
  return 0;
}

int32_t SensorListener::StopSampling(SensorType type) {
  // A worker that has to end leaves this to the thread that ends it, which also ends all sampling.
  if (!IsKnown(type) || !LockUnlessEnding()) {
    return 0;
  }
  const std::lock_guard lock(mutex_, std::adopt_lock);
  if (sampling_[type]) {
    ASensorEventQueue_disableSensor(event_queue_, sensors_[type]);
    sampling_[type] = false;
  }
  return 0;
}

bool SensorListener::IsAnySamplerStarted() const {
  return std::any_of(sampling_.begin(), sampling_.end(),
                     [](const auto& flag) { return flag.load(); });
}

void SensorListener::OnSystemServerDeath() {
  if (!LockUnlessEnding()) {
    return;  // another thread handles it already
  }
  const std::lock_guard lock(mutex_, std::adopt_lock);
  FP_LOG_INFO(kTag, "system server died.");
  StopWorker();
  sensor_manager_ = nullptr;
  sensor_list_ = nullptr;
  sensor_count_ = 0;
  event_queue_ = nullptr;
  std::fill(sensors_.begin(), sensors_.end(), nullptr);
  std::fill(sampling_.begin(), sampling_.end(), false);
}

bool SensorListener::IsOnOwnWorker() const {
  return sensor_polling_worker_thread_ != nullptr && sensor_polling_worker_thread_->IsCurrent();
}

// Does nothing on the worker, which cannot wait for itself.
void SensorListener::StopWorker() {
  if (sensor_polling_worker_thread_ != nullptr && !IsOnOwnWorker()) {
    sensor_polling_worker_thread_->Stop();
    sensor_polling_worker_thread_.clear();
  }
}

// Returns false, without the lock, only on a worker that has to end.
bool SensorListener::LockUnlessEnding() {
  if (!SensorPollingWorkerThread::IsCurrentWorkerOf(this)) {
    mutex_.lock();
    return true;
  }
  return LockUnless(mutex_, [this] { return SensorPollingWorkerThread::IsEndingWorkerOf(this); });
}

bool SensorListener::ConnectSensorManagerIfNeeded()
    FP_NO_THREAD_SAFETY_ANALYSIS {  // the caller holds the lock
  if (sensor_manager_ != nullptr) {
    return true;
  }
  ASensorManager* manager = GetSensorManager(kTag);
  if (manager == nullptr) {
    return false;
  }
  sensor_list_ = nullptr;
  sensor_count_ = ASensorManager_getSensorList(manager, &sensor_list_);
  if (sensor_count_ < 1 || sensor_list_ == nullptr) {
    FP_LOG_ERROR(kTag, "Failed to get sensor list (%d).\n", sensor_count_);
    return false;
  }
  FP_LOG_DEBUG(kTag, "The device sensor count:%d", sensor_count_);
  FindSensors();
  if (!PrepareQueue(kTag, manager, looper_, event_queue_)) {
    return false;
  }
  if (sensor_polling_worker_thread_ == nullptr) {
    sensor_polling_worker_thread_ =
        sp<SensorPollingWorkerThread>(new SensorPollingWorkerThread(this));
  }
  if (!sensor_polling_worker_thread_->Start()) {
    FP_LOG_ERROR(kTag, "Failed to start the polling worker.");
    ASensorManager_destroyEventQueue(manager, event_queue_);
    event_queue_ = nullptr;
    return false;
  }
  FP_LOG_DEBUG(kTag, "Successfully connected to Sensor Manager.");
  sensor_manager_ = manager;
  return true;
}

// Of several sensors with the same string type, the last one is used.
void SensorListener::FindSensors() {
  for (int32_t i = 0; i < sensor_count_; ++i) {
    const char* name = ASensor_getName(sensor_list_[i]);
    const char* string_type = ASensor_getStringType(sensor_list_[i]);
    for (size_t type = 0; string_type != nullptr && type < kSensorTypes; ++type) {
      if (std::string_view(string_type) == kStringTypes[type]) {
        FP_LOG_INFO(kTag, "Found Sensor(%d). name:'%s', string_type:'%s'", static_cast<int>(type),
                    name, string_type);
        sensors_[type] = sensor_list_[i];
      }
    }
  }
  for (size_t type = 0; type < kSensorTypes; ++type) {
    if (sensors_[type] == nullptr) {
      FP_LOG_ERROR(kTag, "%s: Sensor(%s) not found.\n", "ConnectSensorManagerIfNeeded",
                   kStringTypes[type]);
    }
  }
}

int32_t SensorListener::PollSensorEvent() {
  return DrainSensorEvents(
      kTag, kWaitForever,
      [this](int polled, ASensorEvent* events) {
        return polled == ALOOPER_POLL_WAKE ? 0 : FetchEvents(events, kSensorBatch);
      },
      [this](const ASensorEvent* events, ssize_t count) {
        for (ssize_t i = 0; i < count; ++i) {
          ProcessSensorEvent(events[i]);
        }
        return !SensorPollingWorkerThread::IsEndingWorkerOf(this);
      });
}

ssize_t SensorListener::FetchEvents(ASensorEvent* events, size_t count) {
  if (!LockUnlessEnding()) {
    return 0;
  }
  const std::lock_guard lock(mutex_, std::adopt_lock);
  return event_queue_ == nullptr ? 0 : ASensorEventQueue_getEvents(event_queue_, events, count);
}

void SensorListener::ProcessSensorEvent(ASensorEvent event) {
  Deliver(kLight, light_sensor_callback_, event);
  Deliver(kLongPress, long_press_sensor_callback_, event);
}

// A worker that has to end must not use the sensors, which may be gone with the system server, nor
// the listener, which a callback may have destroyed.
void SensorListener::Deliver(SensorType type, const SensorCallback& callback,
                             const ASensorEvent& event) {
  if (SensorPollingWorkerThread::IsEndingWorkerOf(this)) {
    return;
  }
  const ASensor* sensor = sensors_[type];
  if (sensor != nullptr && event.type == ASensor_getType(sensor) && callback) {
    callback(event);
  }
}

}  // namespace android::fp_utils

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>

#include <android/looper.h>
#include <android/sensor.h>
#include <utils/StrongPointer.h>

#include "fp_utils/export.h"
#include "fp_utils/thread_annotations.h"

namespace android::fp_utils {

// Delivers the events of the ambient light sensor and of the long-press gesture sensor to callbacks
// of the service. Connects to the sensor framework at the first StartSampling(), and again at the
// first one after the system server has died.
//
// Use: install the callbacks, then call StartSampling(). When the system server has died, call
// OnSystemServerDeath() before any other operation, because the sensors and the queue died with it.
//
// Threading:  StartSampling, StopSampling and OnSystemServerDeath take a lock; any thread may call
//             them, and so may a callback. Callbacks run without the lock, on the worker thread or
//             on the thread that calls PollSensorEvent() or ProcessSensorEvent(). The callback
//             members are read without the lock, so set them before the first StartSampling().
// Ownership:  owns the worker and the queue. The destructor ends the worker and disables the
//             sensors. It may run in a callback on the worker, which then ends with that callback
//             and no longer uses the listener. While the destructor runs, no other thread may be
//             in an operation.
// Blocking:   connecting waits for the sensor service. OnSystemServerDeath() and the destructor
//             wait for a running callback. If that callback calls an operation in the meantime, the
//             operation does not wait for them in turn; see StartSampling() for its result.
// Errors:     logged and returned; what was connected so far is kept for the next attempt.
// Units:      sensors run at their fastest rate, unbatched.
//
// All threads of a process that poll for sensor events share one looper, which signals each event
// only once. Events that do not fit into a batch of 16, or whose signal another thread has taken,
// are delivered with the next event.
class FP_UTILS_EXPORT SensorListener {
 public:
  // The log prints these numbers.
  enum SensorType : int32_t { kLight = 0, kLongPress = 1 };
  static constexpr size_t kSensorTypes = 2;

  using SensorCallback = std::function<void(const ASensorEvent&)>;

  // Polls the queue from the first connection on.
  class SensorPollingWorkerThread;

  SensorListener();
  ~SensorListener();
  SensorListener(const SensorListener&) = delete;
  SensorListener& operator=(const SensorListener&) = delete;

  // Returns 0 if the sensor is sampling, even if it already was; -ENOMEM if there is no connection
  // or no such sensor, or in a callback while the worker is being ended; otherwise the platform's
  // error.
  int32_t StartSampling(SensorType type);

  // Always returns 0. The worker continues to poll.
  int32_t StopSampling(SensorType type);

  bool IsAnySamplerStarted() const;

  // Drops the connection without using anything that belonged to it. Ends the worker, which drops
  // the events that it has not delivered yet. A callback on the worker cannot wait for its own
  // thread; if it makes this call, the worker is kept for the next connection.
  void OnSystemServerDeath();

  // The steps of the operations above. StartSampling() connects with the lock held.
  // PollSensorEvent() waits for events, delivers them and returns 0, or UNKNOWN_ERROR after a poll
  // error. ProcessSensorEvent() delivers one event.
  bool ConnectSensorManagerIfNeeded();
  int32_t PollSensorEvent();
  void ProcessSensorEvent(ASensorEvent event);

 private:
  void Disconnect();
  void FindSensors() FP_REQUIRES(mutex_);
  bool IsOnOwnWorker() const FP_REQUIRES(mutex_);
  void StopWorker() FP_REQUIRES(mutex_);
  [[nodiscard]] bool LockUnlessEnding() FP_TRY_ACQUIRE(true, mutex_);
  ssize_t FetchEvents(ASensorEvent* events, size_t count);
  void Deliver(SensorType type, const SensorCallback& callback, const ASensorEvent& event);

  sp<SensorPollingWorkerThread> sensor_polling_worker_thread_ FP_GUARDED_BY(mutex_);
  std::mutex mutex_;

  // Guarded by mutex_. The queue is owned; the others belong to the platform. All become invalid
  // when the system server dies.
  ASensorManager* sensor_manager_ FP_GUARDED_BY(mutex_) = nullptr;  // null unless connected
  ASensorList sensor_list_ FP_GUARDED_BY(mutex_) = nullptr;
  int32_t sensor_count_ FP_GUARDED_BY(mutex_) = 0;
  ALooper* looper_ = nullptr;  // set before the worker exists, then constant
  ASensorEventQueue* event_queue_ FP_GUARDED_BY(mutex_) = nullptr;

  // Indexed by type. Written with mutex_ held; the worker and IsAnySamplerStarted() read them
  // without it.
  std::array<std::atomic<const ASensor*>, kSensorTypes> sensors_ = {};
  std::array<std::atomic<bool>, kSensorTypes> sampling_ = {};

 public:
  // Set by the service. The events of a sensor whose callback is empty are dropped.
  SensorCallback light_sensor_callback_;
  SensorCallback long_press_sensor_callback_;
};

}  // namespace android::fp_utils

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
// Use: install the callbacks, then StartSampling(). Call OnSystemServerDeath() when the system
// server has died, before any other operation: sensors and queue are gone with it.
//
// Threading:  StartSampling, StopSampling and OnSystemServerDeath lock; any thread may call them,
//             the callbacks too. Callbacks run on the worker thread (or on the one that calls
//             PollSensorEvent() or ProcessSensorEvent() itself) without a lock and are read without
//             one: install them before the first StartSampling().
// Ownership:  owns worker and queue. The destructor ends the worker and gives the sensors back. It
//             may run in a callback on the worker, which then ends with that callback and does not
//             touch the listener any more. No other thread may be in an operation.
// Blocking:   connecting waits for the sensor service. OnSystemServerDeath() and the destructor
//             wait for a callback that runs. A callback does not wait for them: what it calls
//             meanwhile gives up, as described below.
// Errors:     logged and returned; what was connected so far is kept for the next attempt.
// Units:      sensors run at their fastest rate, unbatched.
//
// All pollers of a process share one looper, which signals an event once. What does not fit into a
// batch of 16, or whose signal another poller has taken, is delivered with the next event.
class FP_UTILS_EXPORT SensorListener {
 public:
  // Also the number in the log.
  enum SensorType : int32_t { kLight = 0, kLongPress = 1 };
  static constexpr size_t kSensorTypes = 2;

  using SensorCallback = std::function<void(const ASensorEvent&)>;

  // Polls the queue for its listener, from the first connection on.
  class SensorPollingWorkerThread;

  SensorListener();
  ~SensorListener();
  SensorListener(const SensorListener&) = delete;
  SensorListener& operator=(const SensorListener&) = delete;

  // 0 if the sensor is sampling, also if it was before; -ENOMEM without a connection or such a
  // sensor, and in a callback while the worker is being ended; else the status of the platform's
  // refusal.
  int32_t StartSampling(SensorType type);

  // Always 0. The worker goes on polling.
  int32_t StopSampling(SensorType type);

  bool IsAnySamplerStarted() const;

  // Forgets the connection without a call on anything that belonged to it. Ends the worker, and
  // drops events that it has fetched and not yet delivered; in a callback, which cannot wait for
  // its own thread, the worker stays for the next connection.
  void OnSystemServerDeath();

  // The steps of the above. The first is for StartSampling(), which holds the lock; the second
  // waits for events and delivers them, 0 or UNKNOWN_ERROR after a poll error; the third delivers
  // one.
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

  // Guarded by mutex_. The queue is owned; the others belong to the platform. All are gone when the
  // system server dies.
  ASensorManager* sensor_manager_ FP_GUARDED_BY(mutex_) = nullptr;  // set: connected
  ASensorList sensor_list_ FP_GUARDED_BY(mutex_) = nullptr;
  int32_t sensor_count_ FP_GUARDED_BY(mutex_) = 0;
  ALooper* looper_ = nullptr;  // set before the worker exists, then constant
  ASensorEventQueue* event_queue_ FP_GUARDED_BY(mutex_) = nullptr;

  // Indexed by type. Written with mutex_ held; the worker and IsAnySamplerStarted() read them
  // without it.
  std::array<std::atomic<const ASensor*>, kSensorTypes> sensors_ = {};
  std::array<std::atomic<bool>, kSensorTypes> sampling_ = {};

 public:
  // Installed by the service; an empty one drops its events.
  SensorCallback light_sensor_callback_;
  SensorCallback long_press_sensor_callback_;
};

}  // namespace android::fp_utils

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <mutex>

#include "fp_utils/export.h"
#include "fp_utils/thread_annotations.h"

struct ALooper;
struct ASensor;
struct ASensorEventQueue;
struct ASensorManager;

namespace android::fp_utils {

// The current ambient light, for captures in bright surroundings. The one instance of the process
// collects light events in a queue between StartSampling() and StopSampling(); GetLight() empties
// the queue.
//
// Threading:  every operation locks. Call StartSampling() and GetLight() on the same thread: the
//             platform's looper may be one per thread.
// Ownership:  the class owns the instance. OnSystemServerDeath() deletes it. An operation that is
//             then waiting for the lock fails as if there were no connection; later ones need a
//             new GetInstance().
// Blocking:   every operation waits for the sensor service while it is being started. GetLight()
//             reads everything that has arrived since the last call, 16 events per poll of up to
//             1 ms, with the lock held. Nothing bounds the number of events that wait: call
//             GetLight() regularly, or stop sampling.
// Errors:     logged and returned; the last sample is kept.
// Units:      lux.
class FP_UTILS_EXPORT AlsMonitor {
 public:
  // Creates the instance on first use and again after the system server has died; never null.
  static AlsMonitor* GetInstance();

  // Deletes the instance, but not its queue, which is gone with the sensor service.
  static void OnSystemServerDeath();

  AlsMonitor(const AlsMonitor&) = delete;
  AlsMonitor& operator=(const AlsMonitor&) = delete;

  // Returns 0; -ENOMEM without sensor manager, looper or queue; UNEXPECTED_NULL without a light
  // sensor; else the platform's error. Registers again if it is sampling already.
  int StartSampling();

  // Returns 0, or -ENOMEM without sensor manager.
  int StopSampling();

  // Returns 0 and stores the newest light value, which is that of an earlier call if the light has
  // not changed since. Returns -ENOMEM without sensor manager, UNKNOWN_ERROR when not sampling or
  // after a poll error, -EINVAL before the first event or if `lux` is null.
  int GetLight(float* lux);

  // Gets the sensor manager; false without one. A different one than before means that the sensor
  // service was restarted and sampling has stopped.
  bool ConnectSensorManagerIfNeeded();

 private:
  AlsMonitor() = default;
  ~AlsMonitor() = default;

  bool Connect() FP_REQUIRES(mutex_);
  bool ConnectForOperation() FP_REQUIRES(mutex_);
  int Drain() FP_REQUIRES(mutex_);

  static AlsMonitor* instance_ FP_GUARDED_BY(mutex_);
  static std::mutex& mutex_;  // never destroyed: a thread may use it while the process exits

  // Guarded by mutex_. Of these only the queue is owned.
  ASensorManager* sensor_manager_ FP_GUARDED_BY(mutex_) = nullptr;
  ALooper* looper_ FP_GUARDED_BY(mutex_) = nullptr;
  ASensorEventQueue* event_queue_ FP_GUARDED_BY(mutex_) = nullptr;  // null: sampling has stopped
  const ASensor* sensor_ FP_GUARDED_BY(mutex_) = nullptr;
  bool started_ FP_GUARDED_BY(mutex_) = false;
  bool has_sample_ FP_GUARDED_BY(mutex_) = false;
  float last_lux_ FP_GUARDED_BY(mutex_) = 0;
};

}  // namespace android::fp_utils

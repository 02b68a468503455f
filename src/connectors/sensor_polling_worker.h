// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utils/Thread.h>

#include "fp_utils/sensor_listener.h"

namespace android::fp_utils {

// The thread on which a listener polls. The listener outlives it, unless a callback destroys the
// listener: then the thread has been asked to exit and no longer uses the listener.
class SensorListener::SensorPollingWorkerThread : public Thread {
 public:
  explicit SensorPollingWorkerThread(SensorListener* listener) : listener_(listener) {}

  // Runs the thread unless it runs already. False if it cannot be started.
  bool Start();

  // Ends the thread and waits for it if it runs. Always true. The thread itself must not call it.
  bool Stop();

  // Whether the calling thread is this one.
  bool IsCurrent() const;

  // Whether the calling thread is a worker of the listener, and whether it is one that has to exit.
  // They only compare the address of the listener, which may have been destroyed.
  static bool IsCurrentWorkerOf(const SensorListener* listener);
  static bool IsEndingWorkerOf(const SensorListener* listener);

 private:
  bool threadLoop() override;

  SensorListener* const listener_;  // Not owned.
};

}  // namespace android::fp_utils

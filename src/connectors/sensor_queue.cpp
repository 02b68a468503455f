// SPDX-License-Identifier: Apache-2.0
#include "connectors/sensor_queue.h"

namespace android::fp_utils {

ASensorManager* GetSensorManager(const char* tag) {
  ASensorManager* manager = ASensorManager_getInstanceForPackage("");
  if (manager == nullptr) {
    FP_LOG_ERROR(tag, "Failed to get sensor manager.");
  }
  return manager;
}

bool PrepareQueue(const char* tag, ASensorManager* manager, ALooper*& looper,
                  ASensorEventQueue*& queue) {
  if (looper == nullptr) {
    looper = ALooper_prepare(ALOOPER_PREPARE_ALLOW_NON_CALLBACKS);
  }
  if (looper == nullptr) {
    FP_LOG_ERROR(tag, "Failed to prepare an event looper.");
    return false;
  }
  if (queue == nullptr) {
    queue = ASensorManager_createEventQueue(manager, looper, 0, nullptr, nullptr);
  }
  if (queue == nullptr) {
    FP_LOG_ERROR(tag, "Failed to create an event queue.");
    return false;
  }
  return true;
}

int RegisterSensor(ASensorEventQueue* queue, const ASensor* sensor) {
  return ASensorEventQueue_registerSensor(queue, sensor, ASensor_getMinDelay(sensor), 0);
}

}  // namespace android::fp_utils

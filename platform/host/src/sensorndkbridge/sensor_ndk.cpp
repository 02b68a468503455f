// SPDX-License-Identifier: Apache-2.0
//
// The functions of <android/sensor.h> that the vendor bridge exports, on top of the simulated
// service.
#include <android/sensor.h>
#include <utils/Errors.h>

#include "sensorndkbridge/calls.h"
#include "sensorndkbridge/handles.h"
#include "sensorndkbridge/service.h"

using fp_host::AbortForArgument;
using fp_host::PlatformCall;
using fp_host::SensorService;

namespace {

// Reads a property of a sensor; `of_null` for a null or dead one.
template <typename Value, typename Get>
Value Property(const char* function, const ASensor* sensor, Value of_null, Get get) {
  return PlatformCall(
      function,
      [=]() -> Value {
        return sensor == nullptr || !fp_host::IsAlive(sensor) ? of_null : get(*sensor);
      },
      sensor);
}

}  // namespace

ASensorManager* ASensorManager_getInstanceForPackage(const char* package) {
  return PlatformCall(
      "ASensorManager_getInstanceForPackage", [] { return SensorService::Get().Connect(); },
      package);
}

int ASensorManager_getSensorList(ASensorManager* manager, ASensorList* list) {
  return PlatformCall(
      "ASensorManager_getSensorList",
      [=] { return SensorService::Get().GetSensorList(manager, list); }, manager);
}

const ASensor* ASensorManager_getDefaultSensor(ASensorManager* manager, int type) {
  return PlatformCall(
      "ASensorManager_getDefaultSensor",
      [=] { return SensorService::Get().GetDefaultSensor(manager, type); }, manager, type);
}

ASensorEventQueue* ASensorManager_createEventQueue(ASensorManager* manager, ALooper* looper,
                                                   int ident, ALooper_callbackFunc callback,
                                                   void* /*data*/) {
  if (callback != nullptr) {
    AbortForArgument("ASensorManager_createEventQueue", "a callback, which is not simulated");
  }
  return PlatformCall(
      "ASensorManager_createEventQueue",
      [=]() -> ASensorEventQueue* {
        return looper == nullptr ? nullptr : SensorService::Get().CreateQueue(manager);
      },
      manager, looper, ident, "null");
}

int ASensorManager_destroyEventQueue(ASensorManager* manager, ASensorEventQueue* queue) {
  return PlatformCall(
      "ASensorManager_destroyEventQueue",
      [=] { return SensorService::Get().DestroyQueue(manager, queue); }, manager, queue);
}

int ASensorEventQueue_registerSensor(ASensorEventQueue* queue, const ASensor* sensor,
                                     int32_t period_us, int64_t latency_us) {
  if (queue != nullptr && sensor == nullptr) {
    AbortForArgument("ASensorEventQueue_registerSensor", "a null sensor");
  }
  return PlatformCall(
      "ASensorEventQueue_registerSensor",
      [=] {
        return queue == nullptr ? android::BAD_VALUE : SensorService::Get().Enable(queue, sensor);
      },
      queue, sensor, period_us, latency_us);
}

int ASensorEventQueue_disableSensor(ASensorEventQueue* queue, const ASensor* sensor) {
  return PlatformCall(
      "ASensorEventQueue_disableSensor",
      [=] { return SensorService::Get().Disable(queue, sensor); }, queue, sensor);
}

ssize_t ASensorEventQueue_getEvents(ASensorEventQueue* queue, ASensorEvent* events, size_t count) {
  return PlatformCall(
      "ASensorEventQueue_getEvents",
      [=] { return SensorService::Get().GetEvents(queue, events, count); }, queue, count);
}

const char* ASensor_getName(const ASensor* sensor) {
  return Property<const char*>("ASensor_getName", sensor, nullptr,
                               [](const ASensor& s) { return s.info.name.c_str(); });
}

const char* ASensor_getStringType(const ASensor* sensor) {
  return Property<const char*>("ASensor_getStringType", sensor, nullptr,
                               [](const ASensor& s) { return s.info.string_type.c_str(); });
}

int ASensor_getType(const ASensor* sensor) {
  return Property<int>("ASensor_getType", sensor, ASENSOR_TYPE_INVALID,
                       [](const ASensor& s) { return s.info.type; });
}

int ASensor_getMinDelay(const ASensor* sensor) {
  return Property<int>("ASensor_getMinDelay", sensor, ASENSOR_DELAY_INVALID,
                       [](const ASensor& s) { return s.info.min_delay_us; });
}

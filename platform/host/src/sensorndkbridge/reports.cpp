// SPDX-License-Identifier: Apache-2.0
//
// The simulated sensors, and what they report to the queues that have them enabled.
#include <algorithm>
#include <iterator>
#include <utility>

#include "sensorndkbridge/looper.h"
#include "sensorndkbridge/service.h"

namespace fp_host {
namespace {

constexpr char kLight[] = "android.sensor.light";
constexpr char kLongPress[] = "com.norvan.sensor.long_press";
// Vendors number their sensor types from 65536.
constexpr int kLongPressType = 65537;

ASensorEvent EventOf(const ASensor& sensor, float reading) {
  ASensorEvent event = {};
  event.version = sizeof event;
  event.sensor = sensor.handle;
  event.type = sensor.info.type;
  event.data[0] = reading;
  return event;
}

}  // namespace

FakeSensor LightSensor(std::string name) {
  return {std::move(name), kLight, ASENSOR_TYPE_LIGHT, 20000};
}

FakeSensor LongPressSensor(std::string name) {
  return {std::move(name), kLongPress, kLongPressType, 0};
}

void SensorService::ReportLux(const std::vector<float>& readings) {
  if (readings.empty()) {
    return;
  }
  {
    const std::lock_guard lock(mutex_);
    lux_ = readings.back();
  }
  ReportReadings(kLight, readings);
}

void SensorService::ReportLongPresses(int times) {
  ReportReadings(kLongPress, std::vector<float>(static_cast<size_t>(times), 1));
}

void SensorService::ReportReadings(const char* string_type, const std::vector<float>& readings) {
  Deliver([&](ASensorEventQueue& queue) {
    bool taken = false;
    for (const ASensor* sensor : queue.enabled) {
      for (const float reading : readings) {
        taken |=
            sensor->info.string_type == string_type && Append(queue, EventOf(*sensor, reading));
      }
    }
    return taken;
  });
}

void SensorService::Push(const std::vector<ASensorEvent>& events) {
  Deliver([&](ASensorEventQueue& queue) {
    bool taken = false;
    for (const ASensorEvent& event : events) {
      taken |= !queue.enabled.empty() && Append(queue, event);
    }
    return taken;
  });
}

template <typename Fill>
void SensorService::Deliver(Fill fill) {
  std::vector<ASensorEventQueue*> filled;
  {
    const std::lock_guard lock(mutex_);
    std::copy_if(queues_.begin(), queues_.end(), std::back_inserter(filled),
                 [&fill](ASensorEventQueue* queue) { return fill(*queue); });
  }
  for (ASensorEventQueue* queue : filled) {
    TheLooper().SignalData(queue);
  }
}

bool SensorService::Append(ASensorEventQueue& queue, const ASensorEvent& event) {
  if (event.type == ASENSOR_TYPE_ADDITIONAL_INFO && !queue.wants_additional_info) {
    return false;
  }
  queue.events.push_back(event);
  return true;
}

bool SensorService::ReportCurrentValue(ASensorEventQueue& queue, const ASensor& sensor) {
  return lux_ && sensor.info.string_type == kLight && Append(queue, EventOf(sensor, *lux_));
}

void SetLux(float lux) { SensorService::Get().ReportLux({lux}); }
void SetLux(const std::vector<float>& readings) { SensorService::Get().ReportLux(readings); }
void LongPress(int times) { SensorService::Get().ReportLongPresses(times); }
void PushSensorEvents(const std::vector<ASensorEvent>& events) {
  SensorService::Get().Push(events);
}

}  // namespace fp_host

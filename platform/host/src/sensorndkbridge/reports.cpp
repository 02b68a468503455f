// SPDX-License-Identifier: Apache-2.0
//
// The simulated sensors and their events, which go to the queues that have the sensor enabled.
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
    for (const ASensor* sensor : queue.enabled) {
      for (const float reading : readings) {
        if (sensor->info.string_type == string_type) {
          queue.events.push_back(EventOf(*sensor, reading));
        }
      }
    }
  });
}

void SensorService::Push(const std::vector<ASensorEvent>& events) {
  Deliver([&](ASensorEventQueue& queue) {
    if (!queue.enabled.empty()) {
      queue.events.insert(queue.events.end(), events.begin(), events.end());
    }
  });
}

template <typename Fill>
void SensorService::Deliver(Fill fill) {
  std::vector<ASensorEventQueue*> filled;
  {
    const std::lock_guard lock(mutex_);
    std::copy_if(queues_.begin(), queues_.end(), std::back_inserter(filled),
                 [&fill](ASensorEventQueue* queue) {
                   const size_t events = queue->events.size();
                   fill(*queue);
                   return queue->events.size() > events;
                 });
  }
  for (ASensorEventQueue* queue : filled) {
    TheLooper().SignalData(queue);
  }
}

bool SensorService::ReportCurrentValue(ASensorEventQueue& queue, const ASensor& sensor) {
  if (!lux_ || sensor.info.string_type != kLight) {
    return false;
  }
  queue.events.push_back(EventOf(sensor, *lux_));
  return true;
}

void ReportLux(float lux) { SensorService::Get().ReportLux({lux}); }
void ReportLux(const std::vector<float>& readings) { SensorService::Get().ReportLux(readings); }
void ReportLongPress(int times) { SensorService::Get().ReportLongPresses(times); }
void PushSensorEvents(const std::vector<ASensorEvent>& events) {
  SensorService::Get().Push(events);
}

}  // namespace fp_host

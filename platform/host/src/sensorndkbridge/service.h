// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include <android/sensor.h>

#include "fp_host/sensor_service.h"
#include "sensorndkbridge/handles.h"

namespace fp_host {

// The sensor service and the bridge's connection to it. A handle that died during the call is
// treated like null. The looper is never locked while the mutex is held.
class SensorService {
 public:
  static SensorService& Get();

  void SetSensors(std::vector<FakeSensor> sensors);
  void Stop(WhileDown while_down);
  void Start();
  SensorUsage GetUsage();

  // Queues one event per reading of each enabled light sensor.
  void ReportLux(const std::vector<float>& readings);
  void ReportLongPresses(int times);
  void Push(const std::vector<ASensorEvent>& events);

  ASensorManager* Connect();
  int GetSensorList(ASensorManager* manager, ASensorList* list);
  const ASensor* GetDefaultSensor(ASensorManager* manager, int type);
  ASensorEventQueue* CreateQueue(ASensorManager* manager);
  int DestroyQueue(ASensorManager* manager, ASensorEventQueue* queue);
  int Enable(ASensorEventQueue* queue, const ASensor* sensor);
  int Disable(ASensorEventQueue* queue, const ASensor* sensor);
  ssize_t GetEvents(ASensorEventQueue* queue, ASensorEvent* events, size_t count);

 private:
  enum class State { kUp, kDown, kDownAndAwaited };  // awaited: Connect() waits

  void LoadList(ASensorManager& manager);
  void ReportReadings(const char* string_type, const std::vector<float>& readings);
  // Runs `fill` on each live queue and signals the looper for those that got events.
  template <typename Fill>
  void Deliver(Fill fill);
  // Queues the event that a sensor reports when it is enabled. False if it reports none.
  bool ReportCurrentValue(ASensorEventQueue& queue, const ASensor& sensor);

  std::mutex mutex_;
  std::condition_variable state_changed_;
  State state_ = State::kUp;
  std::vector<FakeSensor> sensors_ = {LightSensor(), LongPressSensor()};
  std::optional<float> lux_;
  ASensorManager* manager_ = nullptr;  // of the running service, once a client asked for it
  std::vector<std::unique_ptr<ASensorManager>> managers_;  // the dead ones too
  std::vector<ASensorEventQueue*> queues_;                 // the live ones
  std::vector<std::unique_ptr<ASensorEventQueue>> all_queues_;
};

}  // namespace fp_host

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cerrno>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <android/sensor.h>

// The simulated sensor service, which the stand-in of the vendor sensor bridge connects to. A
// program starts with the service up and two sensors, LightSensor() and LongPressSensor(). There is
// one service per program, so what a test changes stays until it is changed back.
//
// Threading:  any thread may call these functions, also while clients use the service.

namespace fp_host {

// One entry of the device's sensor list.
struct FakeSensor {
  std::string name;
  std::string string_type;
  int type;
  int32_t min_delay_us;
};
FakeSensor LightSensor(std::string name = "light");
FakeSensor LongPressSensor(std::string name = "long press");

// Sets the service's list of sensors. A manager keeps the list that its first query returned.
void SetSensors(std::vector<FakeSensor> sensors);

// The service dies: its manager, sensors and queues become invalid and undelivered events are lost.
// Calls under way return as for a null handle; later ones with the old handles abort. A call that
// asks for a manager while the service is down returns null or waits until it is up.
enum class WhileDown { kAnswerNull, kWait };
void KillSensorService(WhileDown while_down = WhileDown::kAnswerNull);
void StartSensorService();
// Stops and starts the service. The next manager has another handle.
void RestartSensorService();

// The light changes: each enabled light sensor reports one event per reading, all at once. As on a
// device, a light sensor that is being enabled reports the current value, if there is one.
void ReportLux(float lux);
void ReportLux(const std::vector<float>& readings);

// Each enabled long-press sensor reports `times` presses.
void ReportLongPress(int times = 1);

// Adds the events unchanged to each queue that has a sensor enabled.
void PushSensorEvents(const std::vector<ASensorEvent>& events);

// The resources that clients hold in the running service.
struct SensorUsage {
  int queues = 0;
  int enabled_sensors = 0;
  bool operator==(const SensorUsage&) const = default;
};
SensorUsage GetSensorUsage();

// Whether exactly `threads` threads wait in ALooper_pollOnce() and no event or wake is pending.
bool ArePollersWaiting(int threads);

// Makes a platform function fail.
struct SensorFault {
  static constexpr int kForever = -1;

  std::string function;
  int result = -EINVAL;  // of a failing call; null for one that returns a pointer
  int calls = 1;         // how many calls in a row fail, or kForever
};
// Sets the fault of a function and replaces its earlier one; aborts on an unknown function. A fault
// of ALooper_pollOnce also ends polls that are already waiting. A fault of
// ASensorManager_getSensorList makes the bridge's own query fail, so the manager keeps an empty
// list.
void SetSensorFault(const SensorFault& fault);
// Removes all faults, and all hooks that OnSensorCall() has set. Running hooks continue.
void ClearSensorFaults();

// Sets the hooks of a function: on the calling thread, `before` runs at the beginning of each call
// and `after` just before the call returns. They let a test slow a call down, or change the service
// during it. Hooks may call the functions of this header. An empty hook removes the earlier one.
void OnSensorCall(const std::string& function, std::function<void()> before,
                  std::function<void()> after = nullptr);

// The recorded platform calls, in the order in which they returned, each as a text like
// "ASensorEventQueue_registerSensor(queue 1, light, 20000, 0) = 0".
struct SensorCall {
  std::thread::id thread;
  std::string text;
};
void RecordSensorCalls(bool record);
std::vector<SensorCall> TakeSensorCalls();

// A call on a dangling handle, or on a destroyed queue, aborts with a message. After
// AllowDeadHandleUses() it is counted instead and returns what it would return for a null handle.
void AllowDeadHandleUses();
int GetDeadHandleUses();

}  // namespace fp_host

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cerrno>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <android/sensor.h>

// The simulated sensor service behind the stand-in of the vendor sensor bridge. A program starts
// with the service up and two sensors, LightSensor() and LongPressSensor(). Any thread may call
// these functions.

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

// The list of the next manager. A manager that was asked for its list keeps it.
void SetSensors(std::vector<FakeSensor> sensors);

// The service dies: its manager, sensors and queues dangle from now on and undelivered events are
// gone. A call that asks for a manager meanwhile gets null or waits for the start.
enum class WhileDown { kAnswerNull, kWait };
void StopSensorService(WhileDown while_down = WhileDown::kAnswerNull);
void StartSensorService();
// Stops and starts the service. The next manager has another handle.
void RestartSensorService();

// The light changes: each enabled light sensor reports one event per reading, all at once. As on a
// device, a light sensor that is being enabled reports the current value, if there is one.
void SetLux(float lux);
void SetLux(const std::vector<float>& readings);

// Each enabled long-press sensor reports so many presses.
void LongPress(int times = 1);

// Puts the events as they are into each queue that has a sensor enabled.
void PushSensorEvents(const std::vector<ASensorEvent>& events);

// What the clients of the running service have open.
struct SensorUsage {
  int queues = 0;
  int enabled_sensors = 0;
  bool operator==(const SensorUsage&) const = default;
};
SensorUsage GetSensorUsage();

// Whether exactly so many threads wait in ALooper_pollOnce() and there is no event or wake for
// them.
bool ArePollersIdle(int threads);

// A platform call that fails, by the name of its function. Aborts on one that it does not know.
struct SensorFault {
  static constexpr int kForever = -1;

  std::string function;
  int result = -EINVAL;  // of a failing call; one that returns a pointer returns null
  int calls = kForever;  // how many calls fail
};
// One per function at a time. One of ALooper_pollOnce also ends polls that wait already. One of
// ASensorManager_getSensorList makes the bridge's own query fail instead: the manager keeps an
// empty list.
void SetSensorFault(const SensorFault& fault);
// Removes all faults, and all hooks of OnSensorCall().
void ClearSensorFaults();

// Runs `before` as each call of the function comes in, `after` as its result goes out, on the
// calling thread: to make a call slow, or to change the service in the middle of it. What runs in
// them may call these functions. Empty ones remove what was set.
void OnSensorCall(const std::string& function, std::function<void()> before,
                  std::function<void()> after = nullptr);

// The record of platform calls, in the order of their return:
// "ASensorEventQueue_registerSensor(queue 1, light, 20000, 0) = 0".
struct SensorCall {
  std::thread::id thread;
  std::string text;
};
void RecordSensorCalls(bool record);
std::vector<SensorCall> TakeSensorCalls();

// A call on a handle that dangles, or on a queue that was destroyed, aborts with a message, unless
// such calls are to be counted; they then answer as if the handle were null.
void CountDeadHandleUses();
int GetDeadHandleUses();

}  // namespace fp_host

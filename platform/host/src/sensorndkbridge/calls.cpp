// SPDX-License-Identifier: Apache-2.0
#include "sensorndkbridge/calls.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <mutex>
#include <utility>

#include "device/misuse.h"
#include "sensorndkbridge/looper.h"

namespace fp_host {
namespace {

constexpr const char* kFunctions[] = {
    "ALooper_forThread",
    "ALooper_prepare",
    "ALooper_pollOnce",
    "ALooper_wake",
    "ASensorManager_getInstanceForPackage",
    "ASensorManager_getSensorList",
    "ASensorManager_getDefaultSensor",
    "ASensorManager_createEventQueue",
    "ASensorManager_destroyEventQueue",
    "ASensorEventQueue_registerSensor",
    "ASensorEventQueue_disableSensor",
    "ASensorEventQueue_getEvents",
    "ASensor_getName",
    "ASensor_getStringType",
    "ASensor_getType",
    "ASensor_getMinDelay",
};

struct Hooks {
  std::function<void()> before;
  std::function<void()> after;
};

// Never destroyed, because a thread may poll while the process exits.
struct Observation {
  std::mutex mutex;
  std::map<std::string, Hooks> hooks;
  std::map<std::string, SensorFault> faults;
  std::atomic<bool> recording = false;
  std::vector<SensorCall> calls;
  std::atomic<bool> active = false;
  std::atomic<bool> counts_dead_handles = false;
  std::atomic<int> dead_handle_uses = 0;

  void Update() { active = recording || !hooks.empty() || !faults.empty(); }
};
Observation& Get() {
  static auto* const observation = new Observation;
  return *observation;
}

void CheckName(const std::string& function) {
  if (std::find(std::begin(kFunctions), std::end(kFunctions), function) == std::end(kFunctions)) {
    AbortForMisuse("The stand-in of the sensor bridge has no " + function + "().");
  }
}

}  // namespace

bool AreCallsInstrumented() { return Get().active; }

void RunHook(const char* function, Moment moment) {
  std::function<void()> action;
  {
    const std::lock_guard lock(Get().mutex);
    const auto found = Get().hooks.find(function);
    if (found == Get().hooks.end()) {
      return;
    }
    action = moment == Moment::kBefore ? found->second.before : found->second.after;
  }
  if (action) {
    action();
  }
}

std::optional<int> TakeFault(const char* function) {
  const std::lock_guard lock(Get().mutex);
  const auto found = Get().faults.find(function);
  if (found == Get().faults.end()) {
    return std::nullopt;
  }
  SensorFault& fault = found->second;
  const int result = fault.result;
  if (fault.calls != SensorFault::kForever && --fault.calls == 0) {
    Get().faults.erase(found);
    Get().Update();
  }
  return result;
}

bool AreCallsRecorded() { return Get().recording; }

void RecordCall(const char* function, std::initializer_list<std::string> arguments,
                const std::string& result) {
  std::string text = function;
  const char* separator = "(";
  for (const std::string& argument : arguments) {
    text += separator + argument;
    separator = ", ";
  }
  text += arguments.size() == 0 ? "()" : ")";
  const std::lock_guard lock(Get().mutex);
  Get().calls.push_back({std::this_thread::get_id(), text + " = " + result});
}

void AbortForArgument(const char* function, const std::string& argument) {
  AbortForMisuse(std::string(function) + "() was called with " + argument + ".");
}

void ReportDeadHandle(const char* function, const std::string& handle) {
  ++Get().dead_handle_uses;
  if (!Get().counts_dead_handles) {
    AbortForArgument(function, handle + ", which is gone");
  }
}

void SetSensorFault(const SensorFault& fault) {
  CheckName(fault.function);
  {
    const std::lock_guard lock(Get().mutex);
    const bool is_of_list = fault.function == "ASensorManager_getSensorList";
    Get().faults[is_of_list ? kListQuery : fault.function] = fault;
    Get().Update();
  }
  TheLooper().Recheck();
}

void ClearSensorFaults() {
  const std::lock_guard lock(Get().mutex);
  Get().faults.clear();
  Get().hooks.clear();
  Get().Update();
}

void OnSensorCall(const std::string& function, std::function<void()> before,
                  std::function<void()> after) {
  CheckName(function);
  const std::lock_guard lock(Get().mutex);
  if (before || after) {
    Get().hooks[function] = {std::move(before), std::move(after)};
  } else {
    Get().hooks.erase(function);
  }
  Get().Update();
}

void RecordSensorCalls(bool record) {
  const std::lock_guard lock(Get().mutex);
  Get().recording = record;
  Get().calls.clear();
  Get().Update();
}

std::vector<SensorCall> TakeSensorCalls() {
  const std::lock_guard lock(Get().mutex);
  return std::exchange(Get().calls, {});
}

void AllowDeadHandleUses() { Get().counts_dead_handles = true; }

int GetDeadHandleUses() { return Get().dead_handle_uses; }

}  // namespace fp_host

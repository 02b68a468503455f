// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <type_traits>

#include "sensorndkbridge/handles.h"

// What the stand-in does for every platform call beside its work: it checks the handles, runs
// hooks, injects faults and records the call.

namespace fp_host {

// Whether a hook or a fault is set or calls are recorded.
bool AreCallsInstrumented();

enum class Moment { kBefore, kAfter };
void RunHook(const char* function, Moment moment);

// Returns the result of the fault that is set for this call, if any, and counts the failed call.
std::optional<int> TakeFault(const char* function);
// The bridge's own query for the sensor list, as a function name for TakeFault().
inline constexpr char kListQuery[] = "query for the sensor list";

bool AreCallsRecorded();
void RecordCall(const char* function, std::initializer_list<std::string> arguments,
                const std::string& result);

// Aborts for a call that would crash on a device, or that is not simulated.
[[noreturn]] void AbortForArgument(const char* function, const std::string& argument);

// Aborts, or counts the use after AllowDeadHandleUses().
void ReportDeadHandle(const char* function, const std::string& handle);

template <typename Value>
void CheckHandle(const char* function, const Value& value) {
  if constexpr (std::is_class_v<std::remove_pointer_t<Value>>) {
    if (value != nullptr && !IsAlive(value)) {
      ReportDeadHandle(function, NameOf(value));
    }
  }
}

template <typename Value>
std::string TextOf(const Value& value) {
  if constexpr (std::is_arithmetic_v<Value>) {
    return std::to_string(value);
  } else if constexpr (std::is_same_v<Value, const char*>) {
    return value == nullptr ? "null" : value;
  } else {
    return value == nullptr ? "null" : NameOf(value);
  }
}

// Runs `work` as the named platform call, with all of the above. A handle may die while the call
// runs, which is not a misuse, so `work` has to check it again.
template <typename Work, typename... Arguments>
auto PlatformCall(const char* function, Work work, Arguments... arguments) {
  (CheckHandle(function, arguments), ...);
  if (!AreCallsInstrumented()) {
    return work();
  }
  using Result = decltype(work());
  RunHook(function, Moment::kBefore);
  Result result = {};
  const std::optional<int> fault = TakeFault(function);
  if (!fault) {
    result = work();
  } else if constexpr (std::is_arithmetic_v<Result>) {
    result = static_cast<Result>(*fault);
  }
  RunHook(function, Moment::kAfter);
  if (AreCallsRecorded()) {
    RecordCall(function, {TextOf(arguments)...}, TextOf(result));
  }
  return result;
}

}  // namespace fp_host

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <type_traits>

#include "sensorndkbridge/handles.h"

// What happens to every platform call beside its work: the check of its handles, hooks, faults and
// the record.

namespace fp_host {

// Whether a hook or a fault is set or calls are recorded.
bool AreCallsObserved();

enum class Moment { kBefore, kAfter };
void RunHook(const char* function, Moment moment);

// The result that a fault gives to this call, or to the bridge's query for the sensor list.
std::optional<int> TakeFault(const char* function);
inline constexpr char kListQuery[] = "query for the sensor list";

bool AreCallsRecorded();
void RecordCall(const char* function, std::initializer_list<std::string> arguments,
                const std::string& result);

// Ends the process over a call that crashes on a device, or that is not simulated.
[[noreturn]] void AbortOver(const char* function, const std::string& argument);

// Aborts or counts.
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

// Every function of the stand-in is this around its work. A handle that dies while the call runs
// is no misuse, so `work` asks again.
template <typename Work, typename... Arguments>
auto PlatformCall(const char* function, Work work, Arguments... arguments) {
  (CheckHandle(function, arguments), ...);
  if (!AreCallsObserved()) {
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

// SPDX-License-Identifier: Apache-2.0
//
// Measures the time from a change of the light to the listener's callback, and compares it with a
// plain thread that polls and fetches.
#include <benchmark/benchmark.h>

#include <atomic>
#include <thread>

#include <android/sensor.h>

#include "fp_host/sensor_service.h"
#include "fp_utils/sensor_listener.h"
#include "measure/ratios.h"
#include "measure/wakes.h"

namespace fp_bench {
namespace {

using android::fp_utils::SensorListener;

void ChangeLight(uint32_t turn) { fp_host::ReportLux(static_cast<float>(turn)); }

void LightToCallback(benchmark::State& state) {
  std::atomic<uint32_t> seen = 0;
  SensorListener listener;
  listener.light_sensor_callback_ = [&seen](const ASensorEvent& event) {
    seen = static_cast<uint32_t>(event.light);
  };
  listener.StartSampling(SensorListener::kLight);
  MeasureWakes(state, seen, ChangeLight);
}

void LightToPoll(benchmark::State& state) {
  ASensorManager* const manager = ASensorManager_getInstanceForPackage("");
  ASensorEventQueue* const queue =
      ASensorManager_createEventQueue(manager, ALooper_prepare(0), 0, nullptr, nullptr);
  ASensorEventQueue_registerSensor(
      queue, ASensorManager_getDefaultSensor(manager, ASENSOR_TYPE_LIGHT), 0, 0);
  std::atomic<uint32_t> seen = 0;
  std::atomic<bool> over = false;
  std::thread poller([&seen, &over, queue] {
    ASensorEvent event;
    while (!over) {
      ALooper_pollOnce(-1, nullptr, nullptr, nullptr);
      while (ASensorEventQueue_getEvents(queue, &event, 1) == 1) {
        seen = static_cast<uint32_t>(event.light);
      }
    }
  });
  MeasureWakes(state, seen, ChangeLight);
  over = true;
  ALooper_wake(ALooper_forThread());
  poller.join();
  ASensorManager_destroyEventQueue(manager, queue);
}

BENCHMARK(LightToCallback)->Iterations(5)->UseManualTime();
BENCHMARK(LightToPoll)->Iterations(5)->UseManualTime();

// Has no goal: the ratio depends mainly on whether the core of the woken thread was asleep.
const bool kRatio =
    ReportRatio("light_event_over_bare_poll", "LightToCallback/iterations:5/manual_time",
                "LightToPoll/iterations:5/manual_time");

}  // namespace
}  // namespace fp_bench

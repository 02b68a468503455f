// SPDX-License-Identifier: Apache-2.0
//
// Compares AlsMonitor::GetLight() with a plain loop that polls and fetches until a batch is not
// full. With an empty queue, both wait for the timeout of the poll. With a full queue, they would
// wait for it before each batch except the first, so polls are made to return at once and only the
// loop is measured.
#include <benchmark/benchmark.h>

#include <chrono>
#include <vector>

#include <android/log.h>
#include <android/sensor.h>

#include "fp_host/sensor_service.h"
#include "fp_utils/als_monitor.h"
#include "measure/ratios.h"

namespace fp_bench {
namespace {

using android::fp_utils::AlsMonitor;

constexpr size_t kBatch = 16;

// Starts sampling and makes the monitor read a first sample.
class Monitor {
 public:
  Monitor() {
    __android_log_set_minimum_priority(ANDROID_LOG_ERROR);
    fp_host::ReportLux(1);
    monitor_.StartSampling();
    Drain();
  }
  ~Monitor() { monitor_.StopSampling(); }

  void Drain() {
    float lux = 0;
    monitor_.GetLight(&lux);
    benchmark::DoNotOptimize(lux);
  }

 private:
  AlsMonitor& monitor_ = *AlsMonitor::GetInstance();
};

class BareQueue {
 public:
  BareQueue() {
    const ASensor* const sensor = ASensorManager_getDefaultSensor(manager_, ASENSOR_TYPE_LIGHT);
    ASensorEventQueue_registerSensor(queue_, sensor, 0, 0);
    Drain();
  }
  ~BareQueue() { ASensorManager_destroyEventQueue(manager_, queue_); }

  void Drain() {
    ASensorEvent events[kBatch] = {};
    ssize_t count = 0;
    do {
      ALooper_pollOnce(1, nullptr, nullptr, nullptr);
      count = ASensorEventQueue_getEvents(queue_, events, kBatch);
      benchmark::DoNotOptimize(events);
    } while (count == kBatch);
  }

 private:
  ASensorManager* const manager_ = ASensorManager_getInstanceForPackage("");
  ASensorEventQueue* const queue_ =
      ASensorManager_createEventQueue(manager_, ALooper_prepare(0), 0, nullptr, nullptr);
};

// Measures only the reading, not the filling of the queue.
template <typename Queue>
void Run(benchmark::State& state) {
  const std::vector<float> readings(static_cast<size_t>(state.range(0)), 350);
  Queue queue;
  if (readings.size() > kBatch) {
    fp_host::SetSensorFault({.function = "ALooper_pollOnce",
                             .result = ALOOPER_POLL_CALLBACK,
                             .calls = fp_host::SensorFault::kForever});
  }
  for (auto _ : state) {
    fp_host::ReportLux(readings);
    const auto start = std::chrono::steady_clock::now();
    queue.Drain();
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    state.SetIterationTime(time.count());
  }
  fp_host::ClearSensorFaults();
}

void GetLight(benchmark::State& state) { Run<Monitor>(state); }
void BareDrain(benchmark::State& state) { Run<BareQueue>(state); }
BENCHMARK(GetLight)->UseManualTime()->Arg(0)->Arg(15)->Arg(1599);
BENCHMARK(BareDrain)->UseManualTime()->Arg(0)->Arg(15)->Arg(1599);

bool ClaimAtMost(const std::string& name, const std::string& events, double value) {
  return Claim(name, "GetLight/" + events + "/manual_time", "BareDrain/" + events + "/manual_time",
               Goal::kAtMost, value);
}

const bool kClaims[] = {
    ClaimAtMost("get_light_empty_queue", "0", 1.1),
    ClaimAtMost("get_light_one_batch", "15", 2),
    ClaimAtMost("get_light_full_queue", "1599", 1.2),
};

}  // namespace
}  // namespace fp_bench

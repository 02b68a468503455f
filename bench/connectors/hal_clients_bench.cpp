// SPDX-License-Identifier: Apache-2.0
//
// Compares the clients of the display and thermal HALs with a plain call over the same proxy.
#include <benchmark/benchmark.h>

#include <memory>
#include <thread>
#include <vector>

#include <aidl/android/hardware/thermal/IThermal.h>
#include <aidl/com/norvan/hardware/kestra/display/IDisplay.h>
#include <android/binder_manager.h>
#include <android/binder_process.h>

#include "fp_host/display_service.h"
#include "fp_host/thermal_service.h"
#include "fp_utils/display_controller.h"
#include "fp_utils/thermal.h"
#include "measure/ratios.h"

namespace fp_bench {
namespace {

using aidl::android::hardware::thermal::IThermal;
using aidl::android::hardware::thermal::Temperature;
using aidl::android::hardware::thermal::TemperatureType;
using aidl::com::norvan::hardware::kestra::display::IDisplay;

// Registers a service and returns a proxy for it.
template <typename Interface, typename Service>
std::shared_ptr<Interface> StartService(Service& service) {
  ABinderProcess_startThreadPool();
  service.Declare();
  service.Start();
  return Interface::fromBinder(
      ndk::SpAIBinder(AServiceManager_waitForService(service.GetInstance().c_str())));
}

void SetLhbmDirectCall(benchmark::State& state) {
  fp_host::DisplayService service;
  const std::shared_ptr<IDisplay> display = StartService<IDisplay>(service);
  bool on = false;
  for (auto _ : state) {
    on = !on;
    benchmark::DoNotOptimize(display->setLhbmState(on).isOk());
  }
}

void SetLhbm(benchmark::State& state) {
  fp_host::DisplayService service;
  StartService<IDisplay>(service);
  android::fp_utils::DisplayController controller;
  unsigned elapsed = 0;
  bool on = false;
  for (auto _ : state) {
    on = !on;
    benchmark::DoNotOptimize(controller.SetLhbm(on, &elapsed));
  }
}

// A phone has about twenty temperature sensors, one of them for the skin.
std::shared_ptr<IThermal> StartThermal(fp_host::ThermalService& service) {
  std::vector<Temperature> temperatures(20);
  for (Temperature& temperature : temperatures) {
    temperature.name = "CPU sensor with a name";
    temperature.type = TemperatureType::CPU;
  }
  temperatures.back().type = TemperatureType::SKIN;
  service.SetTemperatures(temperatures);
  return StartService<IThermal>(service);
}

void SkinSeverityDirectCall(benchmark::State& state) {
  fp_host::ThermalService service;
  const std::shared_ptr<IThermal> thermal = StartThermal(service);
  for (auto _ : state) {
    std::vector<Temperature> temperatures;
    benchmark::DoNotOptimize(
        thermal->getTemperaturesWithType(TemperatureType::SKIN, &temperatures).isOk());
    benchmark::DoNotOptimize(temperatures.at(0).throttlingStatus);
  }
}

void GetCpuSeverity(benchmark::State& state) {
  fp_host::ThermalService service;
  StartThermal(service);
  android::fp_utils::Thermal thermal;
  while (thermal.GetCpuSeverity() < 0) {
    std::this_thread::yield();
  }
  for (auto _ : state) {
    benchmark::DoNotOptimize(thermal.GetCpuSeverity());
  }
}

BENCHMARK(SetLhbm);
BENCHMARK(SetLhbmDirectCall);
BENCHMARK(GetCpuSeverity);
BENCHMARK(SkinSeverityDirectCall);

const bool kClaims[] = {
    Claim("lhbm_switch", "SetLhbm", "SetLhbmDirectCall", Goal::kAtMost, 2),
    Claim("cpu_severity", "GetCpuSeverity", "SkinSeverityDirectCall", Goal::kAtMost, 2),
};

}  // namespace
}  // namespace fp_bench

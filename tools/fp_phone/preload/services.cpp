// SPDX-License-Identifier: Apache-2.0
//
// Starts the services that `fp_phone run --service` names, and sets what the sensors measure,
// before main().
#include <cstdlib>
#include <sstream>
#include <string>

#include "environment.h"
#include "fp_host/display_service.h"
#include "fp_host/hidl_thermal_service.h"
#include "fp_host/sensor_service.h"
#include "fp_host/thermal_service.h"

namespace fp_phone {
namespace {

// Never destroyed: the program's threads may call it while the process exits.
template <typename Service>
Service* Start() {
  static auto* const service = new Service;
  service->Declare();
  service->Start();
  return service;
}

// For both thermal HALs.
template <typename Service>
void StartThermal() {
  Service* const service = Start<Service>();
  if (const char* const skin = getenv(kSkinVariable); skin != nullptr) {
    typename Service::Temperature temperature = {};
    temperature.type = decltype(temperature.type)::SKIN;
    temperature.name = "skin";
    temperature.value = strtof(skin, nullptr);
    service->SetTemperatures({temperature});
  }
}

[[gnu::constructor]] void StartServices() {
  const char* const names = getenv(kServicesVariable);
  std::istringstream list(names != nullptr ? names : "");
  for (std::string name; std::getline(list, name, ',');) {
    if (name == "display") {
      Start<fp_host::DisplayService>();
    } else if (name == "thermal") {
      StartThermal<fp_host::ThermalService>();
    } else if (name == "hidl-thermal") {
      StartThermal<fp_host::HidlThermalService>();
    }
  }
  if (const char* const lux = getenv(kLuxVariable); lux != nullptr) {
    fp_host::ReportLux(strtof(lux, nullptr));
  }
}

}  // namespace
}  // namespace fp_phone

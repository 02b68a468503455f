// SPDX-License-Identifier: Apache-2.0
//
// Runs a fingerprint service on the simulated device through a scenario. README.md beside this file
// documents scenarios, options and exit codes.
#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include <android-base/properties.h>
#include <android/log.h>

#include "control/device.h"
#include "report.h"
#include "scenario.h"
#include "sensor_model.h"
#include "service.h"

namespace fp_service {
namespace {

enum ExitCode { kOk = 0, kFailed = 1, kUsage = 2, kBadScenario = 3 };

struct Options {
  std::string scenario;
  std::string device_root = "fp_device";
  uint64_t seed = 1;
  bool dump_only = false;
  int log_priority = ANDROID_LOG_SILENT;
  std::vector<std::string> properties;
};

// The configuration of the simulated device's build.
void SetProperties(const std::vector<std::string>& properties) {
  android::base::SetProperty("persist.vendor.udfps.dynamic_exposure_supported", "true");
  for (const std::string& property : properties) {
    const size_t equals = property.find('=');
    android::base::SetProperty(property.substr(0, equals), property.substr(equals + 1));
  }
}

std::string NeedsEquals(const std::string& property) {
  return property.find('=') == std::string::npos ? "a property is written NAME=VALUE" : "";
}

// On a terminal, how far the day has come; a pipe gets none.
class Progress {
 public:
  explicit Progress(int total) : total_(total), shown_(isatty(STDERR_FILENO) != 0) {}
  ~Progress() { Clear(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void Step() {
    ++done_;
    if (shown_) {
      fmt::print(stderr, "\r{} of {} touches", done_, total_);
    }
  }
  void Clear() const {
    if (shown_) {
      fmt::print(stderr, "\r\033[K");
    }
  }

 private:
  int total_;
  int done_ = 0;
  bool shown_;
};

// Plays a scenario's events on the service.
class Player {
 public:
  Player(Service& service, SensorModel& sensor, int touches)
      : service_(service), sensor_(sensor), progress_(touches) {}

  void Play(const Event& event) {
    at_ = event.at;
    std::visit([this](const auto& happening) { Happen(happening); }, event.happening);
  }

  const Report& GetReport() const { return report_; }

 private:
  void Happen(const Phase& phase) {
    Say("-- {}", phase.name);
    report_.BeginPhase(phase.name, sensor_.GetExposure());
  }
  void Happen(const Calibrate& calibration) { service_.Calibrate(calibration); }
  void Happen(const Light& light) { sensor_.SetLux(light.lux); }
  void Happen(const Attempts& attempts) {
    for (int i = 0; i < attempts.count; ++i, at_ += attempts.every_s) {
      const Service::Outcome outcome = service_.Authenticate(at_, attempts.finger, attempts.skin);
      report_.Count(attempts.finger != 0, outcome.event->auth_successful, outcome.steps,
                    sensor_.GetExposure());
      Show(outcome);
    }
  }
  void Happen(const AcquisitionErrors& errors) {
    for (int i = 0; i < errors.count; ++i, at_ += errors.every_s) {
      Show(service_.ReportAcquisitionError(at_, errors.info));
    }
  }
  void Happen(const Dump& /*dump*/) {
    progress_.Clear();
    fflush(stdout);
    service_.Dump(STDOUT_FILENO);
  }

  void Show(const Service::Outcome& outcome) {
    Say("{}", outcome.event->ToDebugString());
    if (outcome.steps > 0) {
      Say("   exposure is now {:.3f} ms", sensor_.GetExposure());
    }
    progress_.Step();
  }

  template <typename... Arguments>
  void Say(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
    progress_.Clear();
    fmt::print(format, std::forward<Arguments>(arguments)...);
    fmt::print("\n");
  }

  Service& service_;
  SensorModel& sensor_;
  Progress progress_;
  Report report_;
  time_t at_ = 0;
};

Scenario Load(const std::string& path) {
  std::ifstream file(path);
  if (!file) {
    throw ScenarioError(fmt::format("{}: cannot be opened", path));
  }
  return ReadScenario(file, path);
}

int Run(const Options& options) {
  const Scenario scenario = options.dump_only ? Scenario() : Load(options.scenario);
  __android_log_set_minimum_priority(options.log_priority);
  fp_host::SetDeviceRoot(options.device_root);
  fp_host::BootDevice();
  SetProperties(options.properties);

  SensorModel sensor(options.seed);
  Service service(sensor);
  if (service.GetHistorySize() == 0) {
    fmt::print("first start: no history yet\n");
  } else {
    fmt::print("found {} attempts of earlier runs\n", service.GetHistorySize());
  }
  if (!options.dump_only) {
    Player player(service, sensor, scenario.touches);
    for (const Event& event : scenario.events) {
      player.Play(event);
    }
    fmt::print("\n{}\n", player.GetReport().Text());
  }
  fflush(stdout);
  service.Dump(STDOUT_FILENO);
  return kOk;
}

int Main(int argc, char** argv) {
  Options options;
  const std::map<std::string, int> levels = {{"debug", ANDROID_LOG_DEBUG},
                                             {"info", ANDROID_LOG_INFO},
                                             {"error", ANDROID_LOG_ERROR},
                                             {"off", ANDROID_LOG_SILENT}};
  CLI::App app("Runs a fingerprint service on a simulated device through a scenario.");
  auto* scenario = app.add_option("--scenario", options.scenario, "JSON Lines file of events");
  app.add_option("--device-root", options.device_root, "folder that holds the device's files")
      ->capture_default_str();
  app.add_option("--seed", options.seed, "of the simulated sensor")->capture_default_str();
  app.add_flag("--dump-only", options.dump_only, "start, print the dump of what is found, stop")
      ->excludes(scenario);
  app.add_option("--log", options.log_priority, "library log on stderr: debug, info, error or off")
      ->transform(CLI::CheckedTransformer(levels))
      ->default_str("off");
  app.add_option("--property", options.properties, "NAME=VALUE of a system property; repeatable")
      ->check(CLI::Validator(NeedsEquals, "NAME=VALUE"));
  try {
    app.parse(argc, argv);
    if (!options.dump_only && options.scenario.empty()) {
      throw CLI::RequiredError("--scenario or --dump-only");
    }
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kOk : kUsage;
  }
  try {
    return Run(options);
  } catch (const ScenarioError& error) {
    fmt::print(stderr, "{}\n", error.what());
    return kBadScenario;
  } catch (const std::exception& error) {
    fmt::print(stderr, "fp_service: {}\n", error.what());
    return kFailed;
  }
}

}  // namespace
}  // namespace fp_service

int main(int argc, char** argv) { return fp_service::Main(argc, argv); }

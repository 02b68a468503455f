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
#include <map>
#include <string>
#include <vector>

#include <android-base/properties.h>
#include <android/log.h>

#include "phone.h"
#include "player.h"
#include "scenario.h"
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

void SetProperties(const std::vector<std::string>& properties) {
  for (const std::string& property : properties) {
    const size_t equals = property.find('=');
    android::base::SetProperty(property.substr(0, equals), property.substr(equals + 1));
  }
}

std::string NeedsEquals(const std::string& property) {
  return property.find('=') == std::string::npos ? "a property is written NAME=VALUE" : "";
}

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
  Phone phone(options.device_root, options.seed);
  SetProperties(options.properties);
  if (!scenario.events.empty()) {
    phone.SetTime(scenario.events.front().at);
  }

  Service service(phone);
  if (service.GetHistorySize() == 0) {
    fmt::print("first start: no history yet\n");
  } else {
    fmt::print("found {} attempts of earlier runs\n", service.GetHistorySize());
  }
  if (!options.dump_only) {
    Player player(service, phone, scenario.touches);
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

// SPDX-License-Identifier: Apache-2.0
//
// Runs a fingerprint service on the simulated device through a scenario. README.md beside this file
// documents scenarios, options and exit codes.
#include <fmt/format.h>
#include <getopt.h>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>

#include <android/log.h>

#include "playback.h"
#include "scenario.h"

namespace fp_service {
namespace {

enum ExitCode { kOk = 0, kFailed = 1, kUsage = 2, kBadScenario = 3 };

constexpr char kHelp[] = R"(Runs a fingerprint service on a simulated device through a scenario.

usage: fp_service --scenario FILE [OPTION]...
       fp_service --dump-only [OPTION]...

  --scenario FILE        JSON Lines file of events
  --dump-only            start, print the dump, stop
  --device-root DIR      folder that holds the device's files (fp_device)
  --seed N               seed of the simulated sensor and matcher (1)
  --property NAME=VALUE  set a system property; repeatable
  --log LEVEL            library log on stderr: debug, info, error or off (off)
  -v, --verbose          print every attempt, and all records of the dump
  -h, --help
)";

constexpr option kOptions[] = {{"scenario", required_argument, nullptr, 's'},
                               {"dump-only", no_argument, nullptr, 'd'},
                               {"device-root", required_argument, nullptr, 'r'},
                               {"seed", required_argument, nullptr, 'n'},
                               {"property", required_argument, nullptr, 'p'},
                               {"log", required_argument, nullptr, 'l'},
                               {"verbose", no_argument, nullptr, 'v'},
                               {"help", no_argument, nullptr, 'h'},
                               {}};

struct Options {
  Settings settings;
  std::string scenario;
  bool dump_only = false;
  bool help = false;
  android_LogPriority log_priority = ANDROID_LOG_SILENT;
};

uint64_t ParseSeed(const char* text) {
  uint64_t seed = 0;
  const char* const end = text + strlen(text);
  const auto result = std::from_chars(text, end, seed);
  if (result.ec != std::errc() || result.ptr != end) {
    throw std::invalid_argument("--seed must be an integer from 0 to 18446744073709551615");
  }
  return seed;
}

android_LogPriority ParseLevel(const std::string& text) {
  const std::pair<const char*, android_LogPriority> levels[] = {{"debug", ANDROID_LOG_DEBUG},
                                                                {"info", ANDROID_LOG_INFO},
                                                                {"error", ANDROID_LOG_ERROR},
                                                                {"off", ANDROID_LOG_SILENT}};
  for (const auto& [name, priority] : levels) {
    if (text == name) {
      return priority;
    }
  }
  throw std::invalid_argument("--log must be debug, info, error or off");
}

void ApplyOption(Options& options, int option) {
  switch (option) {
    case 's':
      options.scenario = optarg;
      return;
    case 'd':
      options.dump_only = true;
      return;
    case 'r':
      options.settings.device_root = optarg;
      return;
    case 'n':
      options.settings.seed = ParseSeed(optarg);
      return;
    case 'p':
      options.settings.properties.push_back(ParseProperty(optarg));
      return;
    case 'l':
      options.log_priority = ParseLevel(optarg);
      return;
    case 'v':
      options.settings.verbose = true;
      return;
    case 'h':
      options.help = true;
      return;
    default:
      throw std::invalid_argument("see --help");  // getopt has printed what is wrong
  }
}

Options Parse(int argc, char** argv) {
  Options options;
  for (int option; (option = getopt_long(argc, argv, "vh", kOptions, nullptr)) != -1;) {
    ApplyOption(options, option);
  }
  if (optind < argc) {
    throw std::invalid_argument(fmt::format("unexpected argument {}", argv[optind]));
  }
  if (!options.help && options.dump_only != options.scenario.empty()) {
    throw std::invalid_argument("either --scenario or --dump-only is required, see --help");
  }
  return options;
}

void Run(const Options& options) {
  const Scenario scenario = options.dump_only ? Scenario() : LoadScenario(options.scenario);
  __android_log_set_minimum_priority(options.log_priority);
  for (const auto& [name, value] : options.settings.properties) {
    fmt::print("{} is {}\n", name, value);
  }
  if (options.dump_only) {
    PrintStoredState(options.settings);
  } else {
    PlayTwice(scenario, options.settings);
  }
}

int Main(int argc, char** argv) {
  try {
    const Options options = Parse(argc, argv);
    if (options.help) {
      fmt::print("{}", kHelp);
    } else {
      Run(options);
    }
    return kOk;
  } catch (const std::invalid_argument& error) {
    fmt::print(stderr, "fp_service: {}\n", error.what());
    return kUsage;
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

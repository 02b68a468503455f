// SPDX-License-Identifier: Apache-2.0
//
// Runs any program on the simulated phone, and shows what it leaves there. docs/fp_phone.md
// documents the commands and exit codes.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <map>
#include <string>
#include <string_view>

#include "commands.h"
#include "describe/describe.h"

namespace fp_phone {
namespace {

constexpr char kFooter[] =
    "DIR is a folder of the machine that holds the phone's files.\n\n"
    "Exit codes: run has that of PROGRAM, 128 and the signal's number if a signal killed it, 125 "
    "if\n"
    "the phone could not be set up, 126 and 127 if PROGRAM could not be run or was not found. The\n"
    "others: 0 done, 1 failed, 2 wrong options.";

CLI::Validator Check(std::string (*why)(const std::string&)) {
  return CLI::Validator([why](const std::string& text) { return why(text); }, "", "");
}

// The folder of a phone on which a program has run.
void AddRoot(CLI::App* command, Options* options) {
  command->add_option("--root", options->root, "the folder with the phone's files")
      ->required()
      ->check(CLI::ExistingDirectory)
      ->type_name("DIR");
}

void AddFormat(CLI::App* command, Options* options) {
  command
      ->add_option("--format", options->log_format,
                   "the format of the log, one of logcat's: threadtime, time, brief, long, ...")
      ->check(Check(CheckLogFormat))
      ->type_name("FORMAT")
      ->capture_default_str();
}

void AddRunCommand(CLI::App* app, Options* options, std::string* clock, bool* is_stopped) {
  CLI::App* const command = app->add_subcommand(
      "run", "Run a program on the phone: run --root DIR [OPTION...] -- PROGRAM [ARGUMENT...]");
  command->add_option("--root", options->root, "the folder with the phone's files; made if missing")
      ->required()
      ->type_name("DIR");
  command
      ->add_option("--property", options->properties,
                   "a system property, set before main(); repeatable")
      ->check(Check(CheckProperty))
      ->type_name("NAME=VALUE")
      ->allow_extra_args(false);
  CLI::Option* const time =
      command
          ->add_option("--clock", *clock,
                       "the wall clock starts at this time and runs; 2026-03-04, "
                       "2026-03-04 05:06[:07] or @epoch")
          ->type_name("TIME");
  command->add_flag("--stop-clock", *is_stopped, "the wall clock stands still at that time")
      ->needs(time);
  CLI::Option* const service =
      command
          ->add_option(
              "--service", options->services,
              "a HAL that is declared and up: display, thermal or hidl-thermal; repeatable")
          ->check(CLI::IsMember({"display", "thermal", "hidl-thermal"}))
          ->type_name("SERVICE")
          ->allow_extra_args(false);
  command
      ->add_option("--skin", options->skin, "degrees Celsius that thermal HALs report of the skin")
      ->check(Check(CheckCelsius))
      ->type_name("CELSIUS")
      ->needs(service);
  command->add_option("--lux", options->lux, "what the light sensor measures")
      ->check(Check(CheckLux))
      ->type_name("LUX");
  command->add_flag("--touch", options->has_touch, "the phone has a touch device, for play");
  command
      ->add_option("--log", options->log_filters,
                   "which lines of the log are printed, as logcat takes it: TAG:I or *:S; "
                   "repeatable")
      ->check(Check(CheckLogFilter))
      ->type_name("FILTER")
      ->allow_extra_args(false);
  AddFormat(command, options);
}

void AddOtherCommands(CLI::App* app, Options* options, std::string* panel, bool* is_at_once) {
  CLI::App* command = app->add_subcommand(
      "log", "Show what the programs on the phone have logged: log --root DIR [FILTER...]");
  AddRoot(command, options);
  command->add_option("filter", options->log_filters, "as logcat takes it: TAG:I or *:S")
      ->check(Check(CheckLogFilter))
      ->type_name("FILTER");
  AddFormat(command, options);
  command->add_flag("--clear", options->clears_log, "empty the log instead");

  command = app->add_subcommand(
      "tree", "List the phone's files with their modes and sizes: tree --root DIR");
  AddRoot(command, options);

  command = app->add_subcommand(
      "pull", "Copy a file or folder from the phone: pull --root DIR DEVICE_PATH [TO]");
  AddRoot(command, options);
  command->add_option("path", options->device_path, "the path on the phone")
      ->required()
      ->type_name("DEVICE_PATH");
  command->add_option("to", options->to, "where to; default: this folder")->type_name("TO");

  command = app->add_subcommand("play",
                                "Play a recording on the touch device of the program that runs "
                                "with --touch: play --root DIR [OPTION...] RECORDING");
  AddRoot(command, options);
  command->add_option("recording", options->recording, "made with getevent -lt or evemu-record")
      ->required()
      ->type_name("RECORDING");
  command->add_option("--panel", *panel, "scale to a panel of this size in device units")
      ->type_name("WIDTHxHEIGHT");
  command->add_flag("--at-once", *is_at_once, "play without the recorded pauses");
}

// Takes the program and its arguments, which follow "--" and are not options of this tool.
void TakeProgram(int* argc, char** argv, Options* options) {
  for (int i = 2; i < *argc; ++i) {
    if (std::string_view(argv[1]) == "run" && std::string_view(argv[i]) == "--") {
      options->program.assign(argv + i + 1, argv + *argc);
      *argc = i;
    }
  }
}

void Parse(const std::string& clock, bool is_stopped, const std::string& panel, Options* options) {
  if (!clock.empty()) {
    const auto at_ms = ParseMoment(clock);
    if (!at_ms) {
      throw CLI::ValidationError("--clock", fmt::format("\"{}\" is not a time", clock));
    }
    options->clock = {.at_ms = *at_ms, .is_stopped = is_stopped};
  }
  if (!panel.empty()) {
    const auto size = ParsePanel(panel);
    if (!size) {
      throw CLI::ValidationError("--panel",
                                 fmt::format("\"{}\" is not a size such as 1080x2340", panel));
    }
    options->panel = *size;
  }
}

int Main(int argc, char** argv) {
  Options options;
  std::string clock;
  std::string panel;
  std::string format;
  bool is_stopped = false;
  bool is_at_once = false;
  CLI::App app("runs programs on a simulated phone, and shows what they leave there", "fp_phone");
  app.footer(kFooter);
  AddRunCommand(&app, &options, &clock, &is_stopped);
  AddOtherCommands(&app, &options, &panel, &is_at_once);
  app.add_option("--describe", format)->check(CLI::IsMember({"man", "bash", "zsh"}))->group("");
  app.require_subcommand(0, 1);
  TakeProgram(&argc, argv, &options);
  const bool is_run = argc > 1 && std::string_view(argv[1]) == "run";
  try {
    app.parse(argc, argv);
    Parse(clock, is_stopped, panel, &options);
    options.pace = is_at_once ? fp_host::Pace::kAtOnce : fp_host::Pace::kRecorded;
    if (!format.empty()) {
      fmt::print("{}", fp_tools::Describe(app, format, "COMMAND --root DIR [OPTION...]"));
      return kDone;
    }
    if (app.get_subcommands().empty()) {
      throw CLI::RequiredError("run, log, tree, pull or play");
    }
    if (is_run && options.program.empty()) {
      throw CLI::RequiredError("-- and the program with its arguments");
    }
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : is_run ? kNotStarted : kUsage;
  }
  const std::map<std::string, int (*)(const Options&)> commands = {
      {"run", Run}, {"log", ShowLog}, {"tree", ShowTree}, {"pull", Pull}, {"play", Play}};
  try {
    const int exit_code = commands.at(app.get_subcommands().front()->get_name())(options);
    if (fflush(stdout) != 0 || ferror(stdout) != 0) {
      PrintError("cannot write the output");
      return kFailed;
    }
    return exit_code;
  } catch (const std::exception& error) {
    PrintError("{}", error.what());
    return is_run ? kNotStarted : kFailed;
  }
}

}  // namespace
}  // namespace fp_phone

int main(int argc, char** argv) { return fp_phone::Main(argc, argv); }

// SPDX-License-Identifier: Apache-2.0
//
// Finds the causes of failed unlocks in dumps, bug reports and backup files. docs/fp_inspect.md
// documents the commands, formats and exit codes.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <android/log.h>

#include "commands.h"
#include "describe/describe.h"
#include "inputs.h"
#include "model/zone.h"
#include "output/output.h"

namespace fp_inspect {
namespace {

constexpr char kFooter[] =
    "IN is a dump, a bug report, a history's backup file, a folder of these, or - for standard\n"
    "input.\n\n"
    "Exit codes: 0 success, 1 failure, 2 invalid options, 3 no record in any input, 4 damaged "
    "input\n"
    "(the output covers everything readable), 5 difference found (compare --exit-code,\n"
    "replay --check).";

CLI::Validator MakeValidator(const std::string& name, bool (*is_valid)(const std::string&)) {
  return CLI::Validator(
      [=](const std::string& text) {
        return is_valid(text) ? "" : fmt::format("\"{}\" is not a valid {}", text, name);
      },
      "", name);
}

// The options that commands share.
void AddInputs(CLI::App* command, Options* options) {
  static const std::map<std::string, InputKind> kinds = {
      {"auto", InputKind::kNone}, {"dump", InputKind::kDump}, {"backup", InputKind::kBackup}};
  command->add_option("inputs", options->inputs, "dump, bug report, backup file, folder or -")
      ->required()
      ->type_name("IN");
  command
      ->add_option("--kind", options->kind, "type of the inputs: auto, dump (any text) or backup")
      ->transform(CLI::CheckedTransformer(kinds).description(""))
      ->type_name("KIND")
      ->default_str("auto");
}

void AddFormat(CLI::App* command, Options* options, const std::vector<std::string>& formats) {
  command
      ->add_option("--format", options->format,
                   fmt::format("output format: {}", fmt::join(formats, ", ")))
      ->check(CLI::IsMember(formats).description(""))
      ->type_name("FORMAT")
      ->default_str("text");
}

void AddDevice(CLI::App* command, Options* options) {
  command->add_flag("--salvage", options->salvage,
                    "include readable records after damage in a backup file");
  command
      ->add_option(
          "--tz", options->zone,
          "time zone of the device's local times, e.g. Europe/Berlin; default: that of the bug "
          "report, otherwise this machine's")
      ->check(MakeValidator("time zone", Zone::Exists))
      ->type_name("ZONE");
}

void AddPeriod(CLI::App* command, Options* options) {
  AddDevice(command, options);
  command
      ->add_option(
          "--since", options->since,
          "only records from this time on: 2026-03-04, \"2026-03-04 05:06[:07]\" or @SECONDS "
          "since the epoch")
      ->check(MakeValidator("time", IsValidTime))
      ->type_name("TIME");
  command->add_option("--until", options->until, "only records before this time")
      ->check(MakeValidator("time", IsValidTime))
      ->type_name("TIME");
}

void AddSummary(CLI::App* app, Options* options) {
  static const std::map<std::string, GroupBy> periods = {
      {"day", GroupBy::kDay}, {"hour", GroupBy::kHour}, {"burst", GroupBy::kBurst}};
  CLI::App* const command = app->add_subcommand(
      "summary",
      "Show how many attempts of one device fail, and why. Merges the inputs into one timeline.");
  AddInputs(command, options);
  AddPeriod(command, options);
  AddFormat(command, options, {"text", "jsonl"});
  command->add_option("--by", options->group_by, "also show a line for each day, hour or burst")
      ->transform(CLI::CheckedTransformer(periods).description(""))
      ->type_name("PERIOD");
}

void AddList(CLI::App* app, Options* options, std::vector<std::string>* conditions) {
  CLI::App* const command = app->add_subcommand("list", "List the records, one per line.");
  AddInputs(command, options);
  AddPeriod(command, options);
  AddFormat(command, options, {"text", "jsonl", "csv"});
  command->add_flag("--failed", options->filter.failed, "only failed attempts and enrollments");
  command
      ->add_option(
          "--reason", options->filter.reason,
          "only records with this failure reason or acquisition error, e.g. \"Low quality\" or "
          "TOO_DARK")
      ->type_name("REASON");
  command->add_option("--finger", options->filter.finger, "only records of this finger id")
      ->type_name("FID");
  command
      ->add_option(
          "--where", *conditions,
          "only records whose field matches, e.g. 't_cov<60'; repeatable, all conditions must "
          "match")
      ->type_name("CONDITION")
      ->allow_extra_args(false);
}

void AddVerify(CLI::App* app, Options* options) {
  CLI::App* const command = app->add_subcommand(
      "verify",
      "Show which records the service would load, where a file is damaged, and how many records "
      "after the damage are readable.");
  AddInputs(command, options);
  AddFormat(command, options, {"text", "jsonl"});
}

void AddFleet(CLI::App* app, Options* options) {
  CLI::App* const command = app->add_subcommand(
      "fleet",
      "Rank many devices, one per input or folder entry: worst devices, causes, outliers.");
  AddInputs(command, options);
  AddPeriod(command, options);
  AddFormat(command, options, {"text", "jsonl"});
  command
      ->add_option("-j,--jobs", options->jobs,
                   "inputs to read in parallel; default: one per processor")
      ->check(CLI::Range(1U, 256U))
      ->type_name("N");
  command->add_option("--top", options->top, "number of devices to show, worst first")
      ->capture_default_str()
      ->type_name("N");
}

// The unparsed options of `replay`.
struct ReplayArguments {
  std::string calibration;
  std::vector<std::string> settings;
  std::string sweep;
};

void AddCalibration(CLI::App* command, ReplayArguments* arguments) {
  command
      ->add_option(
          "--calibration", arguments->calibration,
          "calibrated exposure in ms and exposure base, e.g. 60:300; without it, bounds are "
          "not applied")
      ->type_name("MS:BASE");
}

void AddReplay(CLI::App* app, Options* options, ReplayArguments* arguments) {
  CLI::App* const command = app->add_subcommand(
      "replay",
      "Reconstruct the exposure steps from the recorded attempts. With --set or --sweep, also find "
      "the first step that other settings would change.");
  AddInputs(command, options);
  AddDevice(command, options);
  AddFormat(command, options, {"text", "jsonl"});
  AddCalibration(command, arguments);
  command
      ->add_option("--set", arguments->settings,
                   "controller setting to change, e.g. frr_threshold=10; repeatable, all apply")
      ->type_name("NAME=VALUE")
      ->allow_extra_args(false);
  command
      ->add_option("--sweep", arguments->sweep,
                   "values of one setting to try, e.g. frr_threshold=10:40:5")
      ->type_name("NAME=FROM:TO:BY");
  command->add_flag("--check", options->check_replay,
                    "compare the replayed sample with the one in each dump");
  command->add_flag("--model", options->fit_sensor,
                    "fit a sensor model and predict the images after the first different step");
}

void ParseReplay(const ReplayArguments& arguments, Options* options) try {
  if (!arguments.calibration.empty()) {
    options->calibration = Calibration::Parse(arguments.calibration);
  }
  Settings settings;
  for (const std::string& text : arguments.settings) {
    settings.insert_or_assign(ParseSetting(text).first, ParseSetting(text).second);
  }
  const auto sweep = arguments.sweep.empty() ? std::vector<Setting>() : ParseSweep(arguments.sweep);
  for (const auto& [name, value] : sweep) {
    options->variants.push_back(settings);
    options->variants.back().insert_or_assign(name, value);
  }
  if (sweep.empty() && !settings.empty()) {
    options->variants.push_back(settings);
  }
  // All variants change the same settings.
  const Settings first_variant = options->variants.empty() ? Settings() : options->variants.front();
  const bool sets_bound =
      first_variant.contains("upper_bound_us") || first_variant.contains("lower_bound_us");
  if (!options->calibration && (options->fit_sensor || sets_bound)) {
    throw std::invalid_argument("--model and exposure bounds require --calibration");
  }
  if (options->fit_sensor && first_variant.empty()) {
    throw std::invalid_argument("--model requires --set or --sweep");
  }
} catch (const std::invalid_argument& error) {
  throw CLI::ValidationError("replay", error.what());
}

void AddCompare(CLI::App* app, Options* options) {
  CLI::App* const command = app->add_subcommand(
      "compare",
      "Compare two devices, or one device before and after a change: compare A... -- B... With "
      "--since-when, find out when one device changed.");
  AddInputs(command, options);
  CLI::Option* const side_b =
      command->add_option("--against", options->side_b_inputs, "the inputs of side B; same as --")
          ->type_name("IN");
  command
      ->add_flag("--since-when", options->since_when, "find the time of a change within the inputs")
      ->excludes(side_b);
  command->add_flag("--exit-code", options->exit_code,
                    "exit with code 5 if there is a significant difference");
  AddPeriod(command, options);
  AddFormat(command, options, {"text", "jsonl", "csv"});
}

void AddReport(CLI::App* app, Options* options, ReplayArguments* arguments) {
  CLI::App* const command = app->add_subcommand(
      "report",
      "Write an HTML page with the findings and figures of one device, or of two devices and their "
      "differences: report A... -- B...");
  AddInputs(command, options);
  command->add_option("--against", options->side_b_inputs, "the inputs of side B; same as --")
      ->type_name("IN");
  command->add_option("-o,--output", options->page, "HTML file to write; it needs no other file")
      ->required()
      ->type_name("PAGE");
  AddPeriod(command, options);
  AddCalibration(command, arguments);
}

void ParseConditions(const std::vector<std::string>& conditions, Filter* filter) {
  for (const std::string& text : conditions) {
    std::string why;
    const auto condition = Filter::Condition::Parse(text, &why);
    if (!condition) {
      throw CLI::ValidationError("--where", why);
    }
    filter->where.push_back(*condition);
  }
}

int Main(int argc, char** argv) {
  Options options;
  std::vector<std::string> conditions;
  ReplayArguments replay;
  std::string format;
  CLI::App app("find out from fingerprint dumps and histories why unlocks fail", "fp_inspect");
  app.footer(kFooter);
  AddSummary(&app, &options);
  AddList(&app, &options, &conditions);
  AddVerify(&app, &options);
  AddFleet(&app, &options);
  AddReplay(&app, &options, &replay);
  AddCompare(&app, &options);
  AddReport(&app, &options, &replay);
  app.add_option("--describe", format)->check(CLI::IsMember({"man", "bash", "zsh"}))->group("");
  app.require_subcommand(0, 1);
  static char against[] = "--against";
  for (int i = 2; i < argc; ++i) {
    const std::string_view command = argv[1];
    if ((command == "compare" || command == "report") && std::string_view(argv[i]) == "--") {
      argv[i] = against;
    }
  }
  try {
    app.parse(argc, argv);
    ParseConditions(conditions, &options.filter);
    ParseReplay(replay, &options);
    if (!format.empty()) {
      fmt::print("{}", fp_tools::Describe(app, format, "COMMAND [OPTION...] IN..."));
      return kDone;
    }
    if (app.get_subcommands().empty()) {
      throw CLI::RequiredError("summary, list, verify, fleet, replay, compare or report");
    }
    if (app.got_subcommand("compare") && options.side_b_inputs.empty() && !options.since_when) {
      throw CLI::RequiredError("-- IN... for side B, or --since-when,");
    }
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kUsage;
  }
  // If TZ were unset, the C library would check the zone file for changes at each conversion.
  setenv("TZ", ":/etc/localtime", 0);
  __android_log_set_minimum_priority(ANDROID_LOG_SILENT);  // the tool reports damage itself
  const std::map<std::string, int (*)(const Options&)> commands = {
      {"summary", RunSummary}, {"list", RunList},       {"verify", RunVerify}, {"fleet", RunFleet},
      {"replay", RunReplay},   {"compare", RunCompare}, {"report", RunReport}};
  try {
    return commands.at(app.get_subcommands().front()->get_name())(options);
  } catch (const std::exception& error) {
    PrintErrorf("{}", error.what());
    return kFailed;
  }
}

}  // namespace
}  // namespace fp_inspect

int main(int argc, char** argv) { return fp_inspect::Main(argc, argv); }

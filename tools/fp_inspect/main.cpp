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
#include "model/zone.h"
#include "output/output.h"
#include "self_description.h"

namespace fp_inspect {
namespace {

constexpr char kFooter[] =
    "IN is a dump, a bug report, a backup file of a history, a folder of these, or - for the\n"
    "standard input.\n\n"
    "Exit codes: 0 done, 1 failed, 2 wrong options, 3 no record in any input, 4 damage seen (the\n"
    "output is complete as far as readable), 5 a difference (compare --exit-code, replay --check).";

CLI::Validator MakeValidator(const std::string& name, bool (*is_valid)(const std::string&)) {
  return CLI::Validator(
      [=](const std::string& text) {
        return is_valid(text) ? "" : fmt::format("\"{}\" is no {}", text, name);
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
      ->add_option("--kind", options->kind, "what the inputs are: auto, dump (any text) or backup")
      ->transform(CLI::Transformer(kinds))
      ->check(CLI::IsMember({InputKind::kNone, InputKind::kDump, InputKind::kBackup}))
      ->type_name("KIND")
      ->default_str("auto");
}

void AddFormat(CLI::App* command, Options* options, const std::vector<std::string>& formats) {
  command->add_option("--format", options->format, fmt::format("{}", fmt::join(formats, ", ")))
      ->check(CLI::IsMember(formats))
      ->type_name("FORMAT")
      ->default_str("text");
}

void AddDevice(CLI::App* command, Options* options) {
  command->add_flag("--salvage", options->salvage,
                    "take the records too that read behind a damage");
  command
      ->add_option("--tz", options->zone,
                   "zone of the device's local times, as Europe/Berlin; else what a bug report "
                   "says, else the machine's")
      ->check(MakeValidator("time zone", Zone::Exists))
      ->type_name("ZONE");
}

void AddPeriod(CLI::App* command, Options* options) {
  AddDevice(command, options);
  command
      ->add_option("--since", options->since,
                   "leave out what is before; 2026-03-04, 2026-03-04 05:06[:07] or @epoch")
      ->check(MakeValidator("time", IsValidTime))
      ->type_name("TIME");
  command->add_option("--until", options->until, "leave out this moment and what is behind")
      ->check(MakeValidator("time", IsValidTime))
      ->type_name("TIME");
}

void AddSummary(CLI::App* app, Options* options) {
  static const std::map<std::string, GroupBy> periods = {
      {"day", GroupBy::kDay}, {"hour", GroupBy::kHour}, {"burst", GroupBy::kBurst}};
  CLI::App* const command = app->add_subcommand(
      "summary", "One device: how many attempts fail, and why. Several inputs are one timeline.");
  AddInputs(command, options);
  AddPeriod(command, options);
  AddFormat(command, options, {"text", "jsonl"});
  command->add_option("--by", options->group_by, "also a line for each day, hour or burst")
      ->transform(CLI::CheckedTransformer(periods))
      ->type_name("PERIOD");
}

void AddList(CLI::App* app, Options* options, std::vector<std::string>* conditions) {
  CLI::App* const command = app->add_subcommand("list", "The records, one a line.");
  AddInputs(command, options);
  AddPeriod(command, options);
  AddFormat(command, options, {"text", "jsonl", "csv"});
  command->add_flag("--failed", options->filter.failed, "failed attempts and enrollments only");
  command
      ->add_option("--reason", options->filter.reason,
                   "with this reason or acquisition error only, as \"Low quality\" or TOO_DARK")
      ->type_name("REASON");
  command->add_option("--finger", options->filter.finger, "of this finger only")->type_name("FID");
  command
      ->add_option("--where", *conditions,
                   "where a field compares so with a number, as 't_cov<60'; repeatable, all must "
                   "hold")
      ->type_name("CONDITION")
      ->allow_extra_args(false);
}

void AddVerify(CLI::App* app, Options* options) {
  CLI::App* const command = app->add_subcommand(
      "verify",
      "What the service would load of a file, where the damage is, what reads behind it.");
  AddInputs(command, options);
  AddFormat(command, options, {"text", "jsonl"});
}

void AddFleet(CLI::App* app, Options* options) {
  CLI::App* const command = app->add_subcommand(
      "fleet", "Many devices, each an input or an entry of a folder: the worst, causes, outliers.");
  AddInputs(command, options);
  AddPeriod(command, options);
  AddFormat(command, options, {"text", "jsonl"});
  command->add_option("-j,--jobs", options->jobs, "inputs read at once; default: one a processor")
      ->check(CLI::Range(1U, 256U))
      ->type_name("N");
  command->add_option("--top", options->top, "so many of the worst are shown")
      ->capture_default_str()
      ->type_name("N");
}

// The options of `replay` that are parsed later, as text.
struct ReplayArguments {
  std::string calibration;
  std::vector<std::string> settings;
  std::string sweep;
};

void AddReplay(CLI::App* app, Options* options, ReplayArguments* arguments) {
  CLI::App* const command = app->add_subcommand(
      "replay",
      "Exposure steps from the recorded attempts, and the first other one if settings "
      "had been others.");
  AddInputs(command, options);
  AddDevice(command, options);
  AddFormat(command, options, {"text", "jsonl"});
  command
      ->add_option("--calibration", arguments->calibration,
                   "the sensor's exposure in ms and its base, as 60:300; without it bounds are "
                   "not applied")
      ->type_name("MS:BASE");
  command
      ->add_option("--set", arguments->settings,
                   "another setting of the controller, as frr_threshold=10; repeatable, all apply")
      ->type_name("NAME=VALUE")
      ->allow_extra_args(false);
  command
      ->add_option("--sweep", arguments->sweep, "each of several values, as frr_threshold=10:40:5")
      ->type_name("NAME=FROM:TO:BY");
  command->add_flag("--check", options->check_replay,
                    "compare the sample with the one in each dump");
  command->add_flag("--model", options->fit_sensor,
                    "fit the sensor and model what is behind the first other step");
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
  const Settings any = options->variants.empty() ? Settings() : options->variants.front();
  const bool sets_bound = any.contains("upper_bound_us") || any.contains("lower_bound_us");
  if (!options->calibration && (options->fit_sensor || sets_bound)) {
    throw std::invalid_argument("--model and bounds need --calibration");
  }
  if (options->fit_sensor && any.empty()) {
    throw std::invalid_argument("--model needs --set or --sweep");
  }
} catch (const std::invalid_argument& error) {
  throw CLI::ValidationError("replay", error.what());
}

void AddCompare(CLI::App* app, Options* options) {
  CLI::App* const command = app->add_subcommand(
      "compare",
      "What differs between two devices, or before and after: compare A... -- B...; or since when "
      "one device differs from before.");
  AddInputs(command, options);
  CLI::Option* const side_b =
      command->add_option("--against", options->side_b_inputs, "the inputs of B; -- says the same")
          ->type_name("IN");
  command->add_flag("--since-when", options->since_when, "look for one change in the inputs")
      ->excludes(side_b);
  command->add_flag("--exit-code", options->exit_code, "exit with 5 if a difference is shown");
  AddPeriod(command, options);
  AddFormat(command, options, {"text", "jsonl", "csv"});
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
  std::string form;
  CLI::App app("reads fingerprint dumps and histories, and says why unlocks fail");
  app.footer(kFooter);
  AddSummary(&app, &options);
  AddList(&app, &options, &conditions);
  AddVerify(&app, &options);
  AddFleet(&app, &options);
  AddReplay(&app, &options, &replay);
  AddCompare(&app, &options);
  app.add_option("--describe", form)->check(CLI::IsMember({"man", "bash", "zsh"}))->group("");
  app.require_subcommand(0, 1);
  static char against[] = "--against";
  for (int i = 2; i < argc; ++i) {
    if (std::string_view(argv[1]) == "compare" && std::string_view(argv[i]) == "--") {
      argv[i] = against;
    }
  }
  try {
    app.parse(argc, argv);
    ParseConditions(conditions, &options.filter);
    ParseReplay(replay, &options);
    if (!form.empty()) {
      fmt::print("{}", Describe(app, form));
      return kDone;
    }
    if (app.get_subcommands().empty()) {
      throw CLI::RequiredError("summary, list, verify, fleet, replay or compare");
    }
    if (app.got_subcommand("compare") && options.side_b_inputs.empty() && !options.since_when) {
      throw CLI::RequiredError("-- and the inputs of B, or --since-when");
    }
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kUsage;
  }
  // Names the file of the machine's zone. If TZ is not set, each conversion checks whether that
  // file has changed.
  setenv("TZ", ":/etc/localtime", 0);
  __android_log_set_minimum_priority(ANDROID_LOG_SILENT);  // the tool reports damage itself
  const std::map<std::string, int (*)(const Options&)> commands = {
      {"summary", RunSummary}, {"list", RunList},     {"verify", RunVerify},
      {"fleet", RunFleet},     {"replay", RunReplay}, {"compare", RunCompare}};
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

// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include "output/output.h"
#include "output/words.h"

namespace fp_inspect {
namespace {

std::string ExposureText(const Exposure& exposure) {
  return fmt::format("{} attempts, FRR {:.2f} %, mean iq {:.2f}, mean raw {:.2f}",
                     exposure.sample_size, exposure.frr, exposure.avg_iq, exposure.avg_raw_mean);
}

void PrintRun(const Run& run, const Device& device, bool check_replay, const Zone& zone) {
  fmt::print("bring-up at {}: {} attempts, {} of {} images rejected{}{}\n", zone.Text(run.begin),
             run.attempts.size(), run.recorded.rejected, run.images,
             run.recorded.steps.empty() ? ", no exposure step" : "",
             run.unknown.empty() ? "" : " (" + run.unknown + ")");
  for (const ExposureStep& step : run.recorded.steps) {
    fmt::print("  {} {}\n", zone.Text(run.times[step.at]), StepText(run, step, zone));
  }
  for (size_t i = 0; check_replay && i < run.checks.size(); ++i) {
    const ReplayCheck& check = run.checks[i];
    fmt::print("{} {} after attempt {}: {}{}\n", check.Agrees() ? " " : "!",
               Printable(device.sources[check.source]), check.attempts, ExposureText(check.dumped),
               check.Agrees() ? ", same as replay" : "; replay: " + ExposureText(check.replayed));
  }
}

void PrintFit(const SensorFit& fit) {
  fmt::print(
      "sensor model fitted to {} images:\n"
      "  raw = {:.2f} * exposure in ms, standard deviation {:.0f} %\n"
      "  iq = {:.1f} - {:.1f} * ((raw - {:.0f}) / 1000)^2, standard deviation {:.1f}\n"
      "  rejected if iq < {}: wrong for {} of {} covered images\n",
      fit.images, fit.raw_per_ms, 100 * fit.raw_error, fit.best_quality, fit.falloff, fit.best_raw,
      fit.quality_error, fit.iq_cut, fit.wrong, fit.covered);
}

void PrintDeparture(const Departure& departure, const Run& run, const Zone& zone) {
  const auto& [index, at, recorded, other, modelled] = departure;
  fmt::print("  {} attempt {}: {}", zone.Text(run.times[at]), at + 1,
             other ? StepText(run, *other, zone) : "no step");
  if (recorded) {
    fmt::print("; with the recorded settings: {}", StepText(run, *recorded, zone));
  }
  fmt::print("\n");
  if (!modelled) {
    return;
  }
  std::string steps;
  for (const ExposureStep& step : modelled->steps) {
    steps += fmt::format("{} {} to {:.3f} ms", steps.empty() ? "" : ",",
                         zone.Text(run.times[step.at], "%H:%M:%S"), step.expo);
  }
  fmt::print("    modelled: {} of {} images rejected (recorded: {}); steps:{}\n",
             modelled->rejected, run.images, run.recorded.rejected,
             steps.empty() ? " none" : steps);
}

void PrintVariant(const Variant& variant, const Replay& replay, const Zone& zone) {
  std::string settings;
  for (const auto& [name, value] : variant.settings) {
    settings += fmt::format(" {}={}", name, value);
  }
  fmt::print("with{}: steps differ after {} of {} bring-ups\n", settings, variant.departures.size(),
             replay.runs.size());
  for (const Departure& departure : variant.departures) {
    PrintDeparture(departure, replay.runs[departure.run], zone);
  }
}

}  // namespace

void PrintReplay(const Replay& replay, const Device& device, bool check_replay, const Zone& zone) {
  for (const Run& run : replay.runs) {
    PrintRun(run, device, check_replay, zone);
  }
  if (!replay.calibration && !replay.runs.empty()) {
    fmt::print("no --calibration: exposure unknown, bounds not applied\n");
  }
  if (replay.fit) {
    PrintFit(*replay.fit);
  }
  for (const Variant& variant : replay.variants) {
    PrintVariant(variant, replay, zone);
  }
  if (!replay.variants.empty() && !replay.fit) {
    fmt::print(
        "The effect on images after a different step is unknown: use --model to estimate it.\n");
  }
}

}  // namespace fp_inspect

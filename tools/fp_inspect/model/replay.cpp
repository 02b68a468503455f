// SPDX-License-Identifier: Apache-2.0
#include "model/replay.h"

#include <algorithm>
#include <map>
#include <tuple>

namespace fp_inspect {
namespace {

using Records = std::vector<Record>;

// The first record that is not before `time`.
size_t FirstNotBefore(const Records& records, int64_t time) {
  const auto at =
      std::lower_bound(records.begin(), records.end(), time,
                       [](const Record& record, int64_t time) { return record.time < time; });
  return static_cast<size_t>(at - records.begin());
}

// The first attempt of the run that began at `begin`; empty if attempts may be missing before it.
std::optional<size_t> FirstAttempt(const Timeline& timeline, int64_t begin) {
  const size_t first = FirstNotBefore(timeline.records, begin);
  const bool in_gap = std::any_of(timeline.gaps.begin(), timeline.gaps.end(), [&](const Gap& gap) {
    return gap.from < begin && gap.to >= begin;
  });
  if (in_gap || (first == 0 && timeline.full)) {
    return std::nullopt;
  }
  return first;
}

bool FollowsGap(const Timeline& timeline, size_t at) {
  return std::any_of(timeline.gaps.begin(), timeline.gaps.end(), [&](const Gap& gap) {
    return gap.to == timeline.records[at].time && gap.from == timeline.records[at - 1].time;
  });
}

void AddAttempts(const Timeline& timeline, size_t first, size_t end, Run* run) {
  for (size_t i = first; i < end; ++i) {
    const Record& record = timeline.records[i];
    if (i > first && FollowsGap(timeline, i)) {
      run->unknown = "attempts after the last one shown are missing";
      return;
    }
    if (!record.g7) {
      run->unknown = "the next attempt lacks fields that the controller needs";
      return;
    }
    run->attempts.push_back(*record.Attempt());
    run->times.push_back(record.time);
    run->images += record.Attempt()->acquired_info == AuthEventG7::kAcquiredGood ? 1 : 0;
  }
}

Run MakeRun(const Timeline& timeline, const std::vector<const ControllerDump*>& dumps) {
  Run run = {.begin = dumps.front()->begin, .settings = SettingsOf(dumps.front()->exposure)};
  const auto first = FirstAttempt(timeline, run.begin);
  if (!first) {
    run.unknown = "attempts before the first recorded one may be missing";
    return run;
  }
  size_t end = *first;
  for (const ControllerDump* dump : dumps) {
    if (dump->last) {
      const size_t dump_end =
          std::max(FirstNotBefore(timeline.records, *dump->last) + dump->in_last_second, *first);
      run.checks.push_back(
          {.source = dump->source, .attempts = dump_end - *first, .dumped = dump->exposure});
      end = std::min(std::max(end, dump_end), timeline.records.size());
    }
  }
  AddAttempts(timeline, *first, end, &run);
  std::erase_if(run.checks,
                [&](const ReplayCheck& check) { return check.attempts > run.attempts.size(); });
  return run;
}

// The last `size` attempts of `fed`, but none before `begin`.
Sample SampleOf(const std::vector<AuthEventG7>& fed, size_t begin, size_t size) {
  Sample sample = {.first = std::max(begin, fed.size() - std::min(fed.size(), size)),
                   .last = fed.size() - 1};
  for (size_t i = sample.first; i < fed.size(); ++i) {
    if (fed[i].acquired_info == AuthEventG7::kAcquiredGood) {
      ++sample.images;
      sample.rejected += IsRejected(fed[i]) ? 1 : 0;
      sample.avg_iq += fed[i].iq;
      sample.avg_raw_mean += fed[i].rawmean_delta;
    }
  }
  const auto images = static_cast<double>(std::max<size_t>(sample.images, 1));
  sample.avg_iq /= images;
  sample.avg_raw_mean /= images;
  return sample;
}

// Feeds the attempts of the run to a controller. If there is a fit, attempts at an exposure other
// than the recorded one are modelled; otherwise they are fed as they were recorded.
ControllerTrace Simulate(const Run& run, const Settings& settings,
                         const std::optional<Calibration>& calibration, const SensorFit* fit,
                         std::vector<ReplayCheck>* checks = nullptr) {
  ControllerTrace trace;
  ExposureController controller(settings, calibration);
  std::vector<AuthEventG7> fed;
  const auto size = settings.find("number_of_attempts");
  size_t begin = 0;  // of the sample
  for (size_t i = 0; i <= run.attempts.size(); ++i) {
    for (size_t j = 0; checks != nullptr && j < checks->size(); ++j) {
      if ((*checks)[j].attempts == i) {
        (*checks)[j].replayed = controller.Dump();
      }
    }
    if (i == run.attempts.size()) {
      break;
    }
    trace.expo.push_back(controller.GetExpo());
    fed.push_back(fit == nullptr
                      ? run.attempts[i]
                      : fit->Predict(run.attempts[i], controller.GetExpo() / run.recorded.expo[i]));
    trace.rejected += IsRejected(fed.back()) ? 1 : 0;
    const int32_t before = controller.GetStep();
    controller.Feed(fed.back());
    if (controller.GetStep() != before) {
      trace.steps.push_back(
          {.at = i,
           .step = controller.GetStep(),
           .expo = controller.GetExpo(),
           .up = controller.GetStep() > before,
           .sample = SampleOf(fed, begin, size != settings.end() ? size->second : 10)});
      begin = i + 1;
    }
  }
  return trace;
}

// The first step that only one of the traces has, or that leads to different exposures.
std::optional<Departure> DepartureOf(const ControllerTrace& recorded, const ControllerTrace& other,
                                     bool has_same_step_size) {
  for (size_t i = 0; i < std::max(recorded.steps.size(), other.steps.size()); ++i) {
    const auto ith_step = [i](const ControllerTrace& trace) {
      return i < trace.steps.size() ? std::optional(trace.steps[i]) : std::nullopt;
    };
    Departure departure = {.recorded = ith_step(recorded), .other = ith_step(other)};
    auto& a = departure.recorded;
    auto& b = departure.other;
    if (a && b && a->at == b->at && a->step == b->step && has_same_step_size) {
      continue;
    }
    const size_t at = departure.at = std::min(a ? a->at : SIZE_MAX, b ? b->at : SIZE_MAX);
    a = a && a->at == at ? a : std::nullopt;
    b = b && b->at == at ? b : std::nullopt;
    return departure;
  }
  return std::nullopt;
}

void Fit(Replay* replay) {
  std::vector<SensorFit::Image> images;
  for (const Run& run : replay->runs) {
    for (size_t i = 0; i < run.attempts.size(); ++i) {
      if (run.attempts[i].acquired_info == AuthEventG7::kAcquiredGood) {
        images.push_back({&run.attempts[i], run.recorded.expo[i]});
      }
    }
  }
  replay->fit = SensorFit::Of(images);
}

}  // namespace

// The values can be compared exactly, because the library printed both with two decimals.
bool ReplayCheck::Agrees() const {
  const auto key = [](const Exposure& e) {
    return std::tuple(e.sample_size, e.frr, e.avg_iq, e.avg_raw_mean);
  };
  return key(dumped) == key(replayed);
}

bool Replay::Agrees() const {
  return std::all_of(runs.begin(), runs.end(), [](const Run& run) {
    return std::all_of(run.checks.begin(), run.checks.end(),
                       [](const ReplayCheck& check) { return check.Agrees(); });
  });
}

Replay ReplayRecorded(const Device& device, const std::optional<Calibration>& calibration,
                      bool fit_sensor) {
  std::map<int64_t, std::vector<const ControllerDump*>> dumps;
  for (const ControllerDump& dump : device.dumps) {
    dumps[dump.begin].push_back(&dump);
  }
  Replay replay = {.calibration = calibration};
  for (const auto& [begin, run_dumps] : dumps) {
    Run run = MakeRun(device.Of(RecordKind::kAttempt), run_dumps);
    run.recorded = Simulate(run, run.settings, calibration, nullptr, &run.checks);
    replay.check_count += run.checks.size();
    replay.runs.push_back(std::move(run));
  }
  if (fit_sensor) {
    Fit(&replay);
  }
  return replay;
}

void AddVariant(const Settings& settings, Replay* replay) {
  Variant variant = {.settings = settings};
  constexpr char kDenominator[] = "expo_change_unit_denominator";
  for (size_t i = 0; i < replay->runs.size(); ++i) {
    const Run& run = replay->runs[i];
    Settings variant_settings = settings;
    variant_settings.insert(run.settings.begin(), run.settings.end());
    const auto denominator = [&](const Settings& in) {
      return in.contains(kDenominator) ? in.at(kDenominator) : 60;
    };
    auto departure =
        DepartureOf(run.recorded, Simulate(run, variant_settings, replay->calibration, nullptr),
                    denominator(variant_settings) == denominator(run.settings));
    if (departure) {
      departure->run = i;
      if (replay->fit) {
        departure->modelled = Simulate(run, variant_settings, replay->calibration, &*replay->fit);
      }
      variant.departures.push_back(std::move(*departure));
    }
  }
  replay->variants.push_back(std::move(variant));
}

}  // namespace fp_inspect

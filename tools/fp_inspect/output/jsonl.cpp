// SPDX-License-Identifier: Apache-2.0
//
// JSON Lines: one object per line, documented in docs/fp_inspect.md.
#include <fmt/format.h>

#include <cstdio>
#include <nlohmann/json.hpp>

#include "output/output.h"

namespace fp_inspect {
namespace {

using json = nlohmann::ordered_json;

// Raised when a member is removed or changes its meaning, but not for new members and types.
constexpr int kSchema = 1;

json Object(const char* type) { return {{"schema", kSchema}, {"type", type}}; }

// Bytes that are not UTF-8 become the replacement character; NaN is null.
void Put(const json& object) {
  fmt::print("{}\n", object.dump(-1, ' ', false, json::error_handler_t::replace));
}

json ShareJson(const Share& share) {
  json object = {
      {"k", share.k}, {"n", share.n}, {"share", nullptr}, {"low", nullptr}, {"high", nullptr}};
  if (share.n > 0) {
    const Interval range = share.Range();
    object["share"] = share.Value();
    object["low"] = range.low;
    object["high"] = range.high;
  }
  return object;
}

void AddTime(json* object, const char* name, int64_t epoch, const Zone& zone) {
  (*object)[name] = epoch;
  (*object)[std::string(name) + "_text"] = zone.Text(epoch);
}

json TallyJson(const Tally& tally, const Zone& zone) {
  json object = {{"attempts", tally.attempts}, {"bursts", tally.bursts}};
  if (tally.attempts > 0) {
    AddTime(&object, "first", tally.first, zone);
    AddTime(&object, "last", tally.last, zone);
  }
  object["no_image"] = ShareJson(tally.no_image);
  object["rejected"] = ShareJson(tally.rejected);
  object["causes"] = json::array();
  for (const CauseCount& count : tally.causes) {
    json cause = {{"id", count.cause.id}, {"title", count.cause.title}};
    cause.update(ShareJson(count.of_failures));
    cause["meaning"] = count.cause.meaning;
    if (!count.note.empty()) {
      cause["note"] = count.note;
    }
    object["causes"].push_back(std::move(cause));
  }
  return object;
}

json DamageJson(const std::vector<Damage>& list, size_t count) {
  json object = {{"count", count}, {"first", json::array()}};
  for (const Damage& damage : list) {
    object["first"].push_back(
        {{"offset", damage.offset}, {"check", damage.check}, {"text", damage.text}});
  }
  return object;
}

json SummaryJson(const char* type, const Device& device, const Summary& summary, const Zone& zone) {
  json object = Object(type);
  object["inputs"] = device.sources;
  object["zone"] = zone.GetName().empty() ? json(nullptr) : json(zone.GetName());
  object.update(TallyJson(summary.all, zone));
  const Timeline& attempts = device.Of(RecordKind::kAttempt);
  object["history_full"] = attempts.full;
  object["gaps"] = json::array();
  for (const Gap& gap : attempts.gaps) {
    json entry = {{"lost_past", gap.lost_past}};
    AddTime(&entry, "from", gap.from, zone);
    AddTime(&entry, "to", gap.to, zone);
    object["gaps"].push_back(std::move(entry));
  }
  object["thresholds"] = {{"iq", summary.thresholds.iq},
                          {"high_raw_mean", summary.thresholds.high_raw_mean},
                          {"low_raw_mean", summary.thresholds.low_raw_mean},
                          {"coverage", summary.thresholds.coverage},
                          {"from_dump", summary.thresholds.from_dump}};
  object["findings"] = json::array();
  for (const Finding& finding : summary.findings) {
    object["findings"].push_back(
        {{"id", finding.id}, {"k", finding.k}, {"n", finding.n}, {"text", finding.text}});
  }
  object["enrollments"] = {
      {"added", summary.enrolled}, {"failed", summary.enroll_failed}, {"deleted", summary.deleted}};
  object["critical_errors"] = summary.critical_errors;
  object["finger_sizes"] = summary.finger_sizes;
  object["salvaged"] = summary.salvaged;
  object["damage"] = DamageJson(device.damage, device.damage_count);
  return object;
}

json StepJson(const Run& run, const std::optional<ExposureStep>& step, const Zone& zone) {
  if (!step) {
    return nullptr;
  }
  const Sample& sample = step->sample;
  json object = {{"direction", step->up ? "up" : "down"},
                 {"attempt", step->at + 1},
                 {"step", step->step},
                 {"expo_ms", step->expo},
                 {"attempts", sample.last - sample.first + 1},
                 {"images", sample.images},
                 {"rejected", sample.rejected},
                 {"avg_iq", sample.avg_iq},
                 {"avg_raw_mean", sample.avg_raw_mean}};
  AddTime(&object, "first", run.times[sample.first], zone);
  AddTime(&object, "last", run.times[sample.last], zone);
  return object;
}

json StepsJson(const Run& run, const ControllerTrace& trace, const Zone& zone) {
  json steps = json::array();
  for (const ExposureStep& step : trace.steps) {
    steps.push_back(StepJson(run, step, zone));
  }
  return steps;
}

json ExposureJson(const Exposure& exposure) {
  return {{"attempts", exposure.sample_size},
          {"frr", exposure.frr},
          {"avg_iq", exposure.avg_iq},
          {"avg_raw_mean", exposure.avg_raw_mean}};
}

json RunJson(const Run& run, const Device& device, bool check_replay, const Zone& zone) {
  json object = Object("run");
  AddTime(&object, "begin", run.begin, zone);
  object["attempts"] = run.attempts.size();
  object["rejected"] = run.recorded.rejected;
  object["unknown"] = run.unknown.empty() ? json(nullptr) : json(run.unknown);
  object["settings"] = run.settings;
  object["steps"] = StepsJson(run, run.recorded, zone);
  for (size_t i = 0; check_replay && i < run.checks.size(); ++i) {
    const ReplayCheck& check = run.checks[i];
    object["checks"].push_back({{"input", device.sources[check.source]},
                                {"attempts", check.attempts},
                                {"agrees", check.Agrees()},
                                {"dumped", ExposureJson(check.dumped)},
                                {"replayed", ExposureJson(check.replayed)}});
  }
  return object;
}

json VariantJson(const Variant& variant, const Replay& replay, const Zone& zone) {
  json object = Object("variant");
  object["settings"] = variant.settings;
  object["departures"] = json::array();
  for (const Departure& departure : variant.departures) {
    const Run& run = replay.runs[departure.run];
    json entry = {{"attempt", departure.at + 1}};
    AddTime(&entry, "begin", run.begin, zone);
    AddTime(&entry, "time", run.times[departure.at], zone);
    entry["recorded"] = StepJson(run, departure.recorded, zone);
    entry["other"] = StepJson(run, departure.other, zone);
    entry["modelled"] = nullptr;
    if (departure.modelled) {
      entry["modelled"] = {{"rejected", departure.modelled->rejected},
                           {"steps", StepsJson(run, *departure.modelled, zone)}};
    }
    object["departures"].push_back(std::move(entry));
  }
  return object;
}

json FitJson(const SensorFit& fit) {
  json object = Object("fit");
  object.update({{"images", fit.images},
                 {"raw_per_ms", fit.raw_per_ms},
                 {"raw_error", fit.raw_error},
                 {"best_quality", fit.best_quality},
                 {"best_raw", fit.best_raw},
                 {"falloff", fit.falloff},
                 {"quality_error", fit.quality_error},
                 {"iq_cut", fit.iq_cut},
                 {"covered", fit.covered},
                 {"wrong", fit.wrong}});
  return object;
}

json SideJson(const CompareRow& row, const BurstSum& side) {
  json object = {{"n", side.n}};
  if (row.is_share) {
    object["k"] = static_cast<size_t>(side.sum);
  }
  object[row.is_share ? "share" : "mean"] =
      side.n > 0 ? json(side.sum / static_cast<double>(side.n)) : json(nullptr);
  return object;
}

json CompareRowJson(const CompareRow& row) {
  const bool has_interval = row.HasInterval();
  return {{"id", row.id},
          {"title", row.title},
          {"a", SideJson(row, row.a)},
          {"b", SideJson(row, row.b)},
          {"low", has_interval ? json(row.difference.low) : json(nullptr)},
          {"high", has_interval ? json(row.difference.high) : json(nullptr)},
          {"p", row.p ? json(*row.p) : json(nullptr)}};
}

class JsonlOutput : public Output {
 public:
  void PutSummary(const Device& device, const Summary& summary, const Zone& zone) override {
    json object = SummaryJson("summary", device, summary, zone);
    if (!summary.periods.empty()) {
      object["periods"] = json::array();
    }
    for (const Tally& period : summary.periods) {
      json entry = {{"label", period.label}};
      entry.update(TallyJson(period, zone));
      object["periods"].push_back(std::move(entry));
    }
    Put(object);
  }

  void PutRecord(const Record& record, const Device& device, const Thresholds& thresholds,
                 const Zone& zone) override {
    json object = Object(NameOf(record.GetKind()));
    if (record.GetKind() != RecordKind::kFingerSize) {
      AddTime(&object, "timestamp", record.time, zone);
    }
    for (const auto& [name, value] : RowOf(record, thresholds)) {
      std::visit(
          [&, &name = name](const auto& field) {
            if constexpr (std::is_same_v<std::decay_t<decltype(field)>, std::monostate>) {
              object[name] = nullptr;
            } else {
              object[name] = field;
            }
          },
          value);
    }
    object["salvaged"] = record.salvaged;
    object["source"] = device.sources[record.source];
    object["offset"] = record.offset;
    Put(object);
  }

  void PutReplay(const Replay& replay, const Device& device, bool check_replay,
                 const Zone& zone) override {
    for (const Run& run : replay.runs) {
      Put(RunJson(run, device, check_replay, zone));
    }
    if (replay.fit) {
      Put(FitJson(*replay.fit));
    }
    for (const Variant& variant : replay.variants) {
      Put(VariantJson(variant, replay, zone));
    }
  }

  void PutVerified(const Contents& contents) override {
    json object = Object("verified");
    object["input"] = contents.name;
    object["kind"] = contents.kind == InputKind::kBackup ? json("backup")
                     : contents.kind == InputKind::kDump ? json("dump")
                                                         : json(nullptr);
    object["bytes"] = contents.bytes;
    size_t salvaged = 0;
    for (RecordKind kind : {RecordKind::kAttempt, RecordKind::kEnrollment, RecordKind::kFingerSize,
                            RecordKind::kError}) {
      size_t count = 0;
      for (const Snapshot& snapshot : contents.snapshots) {
        for (const Record& record : snapshot.records) {
          count += snapshot.kind == kind && !record.salvaged ? 1 : 0;
          salvaged += snapshot.kind == kind && record.salvaged ? 1 : 0;
        }
      }
      object["records"][NameOf(kind)] = count;
    }
    object["loaded"] = contents.kind == InputKind::kBackup ? json(contents.loaded) : json(nullptr);
    object["salvaged"] = salvaged;
    object["damage"] = DamageJson(contents.damage, contents.damage_count);
    Put(object);
  }

  void PutDevice(const std::string& name, const Device& device, const Summary& summary,
                 const Zone& zone) override {
    json object = SummaryJson("device", device, summary, zone);
    object["device"] = name;
    Put(object);
  }

  void PutComparison(const Comparison& comparison, const Zone& zone) override {
    json object = Object("comparison");
    object["differs"] = comparison.differs;
    object["verdict"] = comparison.verdict;
    object["attempts"] = comparison.attempts;
    object["bursts"] = comparison.bursts;
    object["tested"] = comparison.tested;
    if (const auto& change = comparison.change) {
      AddTime(&object, "change", change->at, zone);
      AddTime(&object, "earliest", change->earliest, zone);
      AddTime(&object, "latest", change->latest, zone);
    }
    object["rows"] = json::array();
    for (const CompareRow& row : comparison.rows) {
      object["rows"].push_back(CompareRowJson(row));
    }
    Put(object);
  }

  void EndList(const Device& device) override {
    if (device.damage_count > 0) {
      json object = Object("damage");
      object.update(DamageJson(device.damage, device.damage_count));
      Put(object);
    }
  }

  void PutFailure(const std::string& input, const std::string& text) override {
    PutMessage("failure", input, text);
  }
  void PutWarning(const std::string& input, const std::string& text) override {
    PutMessage("warning", input, text);
  }

 private:
  static void PutMessage(const char* type, const std::string& input, const std::string& text) {
    PrintError(text);
    json object = Object(type);
    object["input"] = input;
    object["text"] = text;
    Put(object);
  }
};

}  // namespace

std::unique_ptr<Output> MakeJsonlOutput() { return std::make_unique<JsonlOutput>(); }

}  // namespace fp_inspect

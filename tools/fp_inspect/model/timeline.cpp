// SPDX-License-Identifier: Apache-2.0
#include "model/timeline.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <unordered_map>
#include <utility>

#include "reading/dump_line.h"

namespace fp_inspect {
namespace {

constexpr size_t kDamageKept = 100;

// A history whose size is a multiple of this is assumed to be full. The library fixes only the
// capacities of enrollments and errors; services choose the others.
constexpr size_t kCapacityUnit = 50;

// How many records may be in one history but not in the other before the next common record.
constexpr size_t kMaxSkippedRecords = 64;

// The number of candidates that are tried to find where a history begins.
constexpr size_t kMaxOverlapsTried = 64;

// A hash of what a dump and a backup file have in common. It leaves out floats, which they round
// differently.
size_t KeyOf(const Record& record) {
  Record alike = record;
  if (auto* attempt = std::get_if<AuthEventG7>(&alike.value)) {
    attempt->t_cov = 0;
    attempt->t_dist = 0;
  }
  return std::hash<std::string>()(std::to_string(record.time) + DumpText(alike));
}

// Merges the histories of one kind, oldest first.
class Merger {
 public:
  explicit Merger(Timeline* timeline) : timeline_(*timeline) {}

  void Add(std::vector<Record> records) {
    std::vector<size_t> keys(records.size());
    std::transform(records.begin(), records.end(), keys.begin(), KeyOf);
    const size_t size = records.size();
    if (keys_.empty()) {
      timeline_.full = size % kCapacityUnit == 0;
      timeline_.largest = size;
      Append(std::move(records), keys);
    } else if (const auto overlap = FindOverlap(keys)) {
      Align(*overlap, std::move(records), keys);
    } else {
      AddGap(records, size);
      Append(std::move(records), keys);
    }
    timeline_.full = timeline_.full && size <= timeline_.largest;  // otherwise it has grown
    timeline_.largest = std::max(timeline_.largest, size);
  }

  void Finish() {
    const auto by_time = [](const Record& a, const Record& b) { return a.time < b.time; };
    if (is_mixed_) {
      std::stable_sort(timeline_.records.begin(), timeline_.records.end(), by_time);
    }
  }

 private:
  struct Overlap {
    size_t old_at;
    size_t new_at;
  };

  void Append(std::vector<Record> records, const std::vector<size_t>& keys, size_t from = 0) {
    for (size_t i = from; i < records.size(); ++i) {
      positions_[keys[i]].push_back(keys_.size());
      keys_.push_back(keys[i]);
      timeline_.records.push_back(std::move(records[i]));
    }
  }

  // The number of equal records from these positions on. Sets `to_end` if they reach the end of
  // either history.
  size_t MatchLength(size_t old_at, size_t new_at, const std::vector<size_t>& keys,
                     bool* to_end) const {
    size_t run = 0;
    while (old_at + run < keys_.size() && new_at + run < keys.size() &&
           keys_[old_at + run] == keys[new_at + run]) {
      ++run;
    }
    *to_end = old_at + run == keys_.size() || new_at + run == keys.size();
    return run;
  }

  // Finds where the new history begins in the old one. Prefers an overlap that reaches the end of
  // either; otherwise takes the longest. Because of damage, the first records of the new history
  // may be missing from the old one.
  std::optional<Overlap> FindOverlap(const std::vector<size_t>& keys) const {
    for (size_t new_at = 0; new_at < keys.size(); ++new_at) {
      const auto found = positions_.find(keys[new_at]);
      if (found == positions_.end()) {
        continue;
      }
      Overlap best = {found->second.front(), new_at};
      size_t longest = 0;
      for (size_t i = 0; i < std::min(found->second.size(), kMaxOverlapsTried); ++i) {
        bool to_end = false;
        const size_t run = MatchLength(found->second[i], new_at, keys, &to_end);
        if (to_end) {
          return Overlap{found->second[i], new_at};
        }
        if (run > longest) {
          longest = run;
          best.old_at = found->second[i];
        }
      }
      return best;
    }
    return std::nullopt;
  }

  // Merges both from the overlap on. Where they differ, one lacks records of the other.
  void Align(Overlap overlap, std::vector<Record> records, const std::vector<size_t>& keys) {
    size_t old_at = overlap.old_at;
    size_t new_at = overlap.new_at;
    std::vector<std::pair<size_t, size_t>> insertions;  // position in the old, index in the new
    for (size_t i = 0; i < new_at; ++i) {
      insertions.emplace_back(old_at, i);
    }
    while (old_at < keys_.size() && new_at < keys.size()) {
      if (keys_[old_at] == keys[new_at]) {
        ++old_at;
        ++new_at;
      } else if (const size_t skipped = DistanceTo(keys_, old_at, keys[new_at]); skipped > 0) {
        old_at += skipped;
        timeline_.dropped += skipped;
      } else if (DistanceTo(keys, new_at, keys_[old_at]) > 0) {
        insertions.emplace_back(old_at, new_at++);
      } else {
        ++old_at;
        ++timeline_.dropped;
      }
    }
    Insert(insertions, records, keys);
    Append(std::move(records), keys, new_at);
  }

  static size_t DistanceTo(const std::vector<size_t>& keys, size_t at, size_t wanted) {
    for (size_t ahead = 1; ahead <= kMaxSkippedRecords && at + ahead < keys.size(); ++ahead) {
      if (keys[at + ahead] == wanted) {
        return ahead;
      }
    }
    return 0;
  }

  void Insert(const std::vector<std::pair<size_t, size_t>>& insertions,
              std::vector<Record>& records, const std::vector<size_t>& keys) {
    if (insertions.empty()) {
      return;
    }
    std::vector<Record> old_records = std::exchange(timeline_.records, {});
    const std::vector<size_t> old_keys = std::exchange(keys_, {});
    auto next = insertions.begin();
    for (size_t i = 0; i <= old_keys.size(); ++i) {
      for (; next != insertions.end() && next->first == i; ++next) {
        keys_.push_back(keys[next->second]);
        timeline_.records.push_back(std::move(records[next->second]));
      }
      if (i < old_keys.size()) {
        keys_.push_back(old_keys[i]);
        timeline_.records.push_back(std::move(old_records[i]));
      }
    }
    positions_.clear();
    for (size_t i = 0; i < keys_.size(); ++i) {
      positions_[keys_[i]].push_back(i);
    }
  }

  void AddGap(const std::vector<Record>& records, size_t size) {
    const int64_t last = timeline_.records.back().time;
    const int64_t first = records.front().time;
    if (first < last) {
      is_mixed_ = true;  // another history of the same device
    } else {
      timeline_.gaps.push_back({last, first, size < timeline_.largest});
    }
  }

  Timeline& timeline_;
  std::vector<size_t> keys_;
  std::unordered_map<size_t, std::vector<size_t>> positions_;
  bool is_mixed_ = false;
};

void MakeAbsolute(Snapshot* snapshot, const Zone& zone) {
  for (Record& record : snapshot->records) {
    record.time = snapshot->times_are_local ? zone.ToEpoch(record.time) : record.time;
  }
  snapshot->times_are_local = false;
}

}  // namespace

void DeviceBuilder::AddDumps(const Contents& contents, const Zone& zone) {
  constexpr std::string_view kSuccess = "Initialization successful, start_time:";
  size_t from = 0;
  for (const Exposure& exposure : contents.exposures) {
    // A service may print its attempts after the controller. If there is only one dump, all
    // attempts belong to it.
    const size_t to =
        contents.exposures.size() == 1 ? contents.snapshots.size() : exposure.snapshots;
    ControllerDump dump = {.exposure = exposure,
                           .source = static_cast<uint32_t>(device_.sources.size())};
    for (; from < to; ++from) {
      const Snapshot& snapshot = contents.snapshots[from];
      if (snapshot.kind == RecordKind::kAttempt) {
        const int64_t last = snapshot.records.back().time;
        dump.last = snapshot.times_are_local ? zone.ToEpoch(last) : last;
        dump.in_last_second = static_cast<size_t>(
            std::count_if(snapshot.records.begin(), snapshot.records.end(),
                          [&](const Record& record) { return record.time == last; }));
      }
    }
    if (exposure.whole && exposure.bring_up.starts_with(kSuccess)) {
      if (const auto begin = ReadWallTime(exposure.bring_up.substr(kSuccess.size()))) {
        dump.begin = zone.ToEpoch(*begin);
        device_.dumps.push_back(std::move(dump));
      }
    }
  }
}

void DeviceBuilder::Add(Contents contents) {
  int64_t newest = INT64_MIN;
  const auto source = static_cast<uint32_t>(device_.sources.size());
  const bool names_zone = !contents.time_zone.empty() && Zone::Exists(contents.time_zone);
  const std::string zone = zone_.empty() && names_zone ? contents.time_zone : zone_;
  if (!zone.empty()) {
    device_.zone = zone;
  }
  AddDumps(contents, Zone(zone));
  device_.sources.push_back(contents.name);
  for (Snapshot& snapshot : contents.snapshots) {
    if (!salvage_) {
      std::erase_if(snapshot.records, [](const Record& record) { return record.salvaged; });
    }
    if (snapshot.records.empty()) {
      continue;
    }
    for (Record& record : snapshot.records) {
      record.source = source;
    }
    MakeAbsolute(&snapshot, Zone(zone));
    newest = std::max(newest, snapshot.records.back().time);
    snapshots_.push_back(std::move(snapshot));
  }
  for (Damage& damage : contents.damage) {
    if (device_.damage.size() < kDamageKept) {
      damage.text = fmt::format("{}: {}", contents.name, damage.text);
      device_.damage.push_back(std::move(damage));
    }
  }
  device_.damage_count += contents.damage_count;
  if (contents.kind == InputKind::kDump && newest >= newest_) {
    newest_ = newest;
    device_.exposure =
        contents.exposures.empty() ? std::nullopt : std::optional(contents.exposures.back());
    device_.bring_up = std::move(contents.bring_up);
  }
}

Device DeviceBuilder::Finish() {
  const auto ends = [](const Snapshot& snapshot) {
    return std::pair(snapshot.records.back().time, snapshot.records.front().time);
  };
  std::stable_sort(snapshots_.begin(), snapshots_.end(),
                   [&](const Snapshot& a, const Snapshot& b) { return ends(a) < ends(b); });
  for (size_t kind = 0; kind < kRecordKinds; ++kind) {
    Merger merger(&device_.timelines[kind]);
    for (Snapshot& snapshot : snapshots_) {
      if (snapshot.kind == static_cast<RecordKind>(kind)) {
        merger.Add(std::move(snapshot.records));
        snapshot.records = {snapshot.records.end(), snapshot.records.end()};
      }
    }
    merger.Finish();
  }
  snapshots_.clear();
  return std::move(device_);
}

std::vector<size_t> BurstStarts(const std::vector<Record>& records) {
  std::vector<size_t> starts;
  for (size_t i = 0; i < records.size(); ++i) {
    if (i == 0 || records[i].time - records[i - 1].time > kBurstPause) {
      starts.push_back(i);
    }
  }
  return starts;
}

}  // namespace fp_inspect

// SPDX-License-Identifier: Apache-2.0
#include "model/summary.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <utility>

#include "model/checks.h"

namespace fp_inspect {
namespace {

std::string LabelOf(const Record& record, GroupBy by, size_t burst, const Zone& zone) {
  switch (by) {
    case GroupBy::kDay:
      return zone.Text(record.time, "%Y-%m-%d");
    case GroupBy::kHour:
      return zone.Text(record.time, "%Y-%m-%d %Hh");
    case GroupBy::kBurst:
      return fmt::format("burst {}", burst);
    case GroupBy::kNothing:
      break;
  }
  return "";
}

std::vector<Tally> Periods(const std::vector<Record>& attempts, GroupBy by,
                           const Thresholds& thresholds, const Zone& zone) {
  std::vector<Tally> periods;
  std::vector<Record> period;
  std::string label;
  const auto close = [&] {
    if (!period.empty()) {
      periods.push_back(TallyOf(period, thresholds));
      periods.back().label = label;
      period.clear();
    }
  };
  const std::vector<size_t> starts = BurstStarts(attempts);
  size_t burst = 0;
  for (size_t i = 0; i < attempts.size(); ++i) {
    burst += burst < starts.size() && starts[burst] == i ? 1 : 0;
    std::string next = LabelOf(attempts[i], by, burst, zone);
    if (next != label) {
      close();
      label = std::move(next);
    }
    period.push_back(attempts[i]);
  }
  close();
  return periods;
}

void CountEnrollments(const Device& device, Summary* summary) {
  for (const Record& record : device.Of(RecordKind::kEnrollment).records) {
    const EnrollEventG7& event = *record.Enrollment();
    summary->deleted += event.op == EnrollEventG7::kOpDelete ? 1 : 0;
    if (event.op == EnrollEventG7::kOpAdd) {
      ++(event.enroll_successful ? summary->enrolled : summary->enroll_failed);
    }
  }
}

}  // namespace

Tally TallyOf(const std::vector<Record>& attempts, const Thresholds& thresholds) {
  Tally tally;
  std::map<std::string, CauseCount> causes;
  for (const Record& record : attempts) {
    const AuthEventG7& attempt = *record.Attempt();
    ++tally.attempts;
    if (attempt.acquired_info != AuthEventG7::kAcquiredGood) {
      ++tally.no_image.k;
    }
    tally.rejected.k += IsRejected(attempt) ? 1 : 0;
    if (IsFailed(attempt)) {
      Cause cause = CauseOf(record, thresholds);
      CauseCount& count = causes[cause.id];
      count.cause = std::move(cause);
      ++count.of_failures.k;
    }
  }
  tally.no_image.n = tally.attempts;
  tally.rejected.n = tally.attempts - tally.no_image.k;
  tally.bursts = BurstStarts(attempts).size();
  if (!attempts.empty()) {
    tally.first = attempts.front().time;
    tally.last = attempts.back().time;
  }
  for (auto& [id, count] : causes) {
    count.of_failures.n = tally.no_image.k + tally.rejected.k;
    tally.causes.push_back(std::move(count));
  }
  std::stable_sort(
      tally.causes.begin(), tally.causes.end(),
      [](const CauseCount& a, const CauseCount& b) { return a.of_failures.k > b.of_failures.k; });
  return tally;
}

Summary Summarise(const Device& device, GroupBy by, const Zone& zone) {
  Summary summary;
  const std::vector<Record>& attempts = device.Of(RecordKind::kAttempt).records;
  summary.thresholds = Thresholds::Of(device.exposure);
  summary.all = TallyOf(attempts, summary.thresholds);
  if (by != GroupBy::kNothing) {
    summary.periods = Periods(attempts, by, summary.thresholds, zone);
  }
  CountEnrollments(device, &summary);
  summary.critical_errors = device.Of(RecordKind::kError).records.size();
  summary.finger_sizes = device.Of(RecordKind::kFingerSize).records.size();
  for (const Timeline& timeline : device.timelines) {
    summary.salvaged += std::count_if(timeline.records.begin(), timeline.records.end(),
                                      [](const Record& record) { return record.salvaged; });
  }
  CrossCheck(device, &summary);
  return summary;
}

}  // namespace fp_inspect

// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "output/output.h"
#include "output/words.h"

namespace fp_inspect {
namespace {

bool IsColoured() {
  const char* const no_color = getenv("NO_COLOR");
  const char* const term = getenv("TERM");
  return isatty(STDOUT_FILENO) != 0 && (no_color == nullptr || *no_color == '\0') &&
         term != nullptr && std::string(term) != "dumb";
}

// Prints a table row without trailing blanks.
void PutRow(const std::string& row) {
  fmt::print("{}\n", row.substr(0, row.find_last_not_of(' ') + 1));
}

class TextOutput : public Output {
 public:
  void PutSummary(const Device& device, const Summary& summary, const Zone& zone) override {
    const Tally& all = summary.all;
    const Timeline& attempts = device.Of(RecordKind::kAttempt);
    if (all.attempts > 0) {
      fmt::print(
          "{} attempts, {} to {}{}{}\n", Bold(all.attempts), zone.Text(all.first, kMinute),
          zone.Text(all.last, kMinute),
          attempts.full ? " (history probably full: older attempts are lost)" : "",
          summary.salvaged > 0 ? fmt::format(", {} records salvaged", summary.salvaged) : "");
      PutShares(all);
      PutCauses(all);
    } else {
      fmt::print("no attempts\n");
    }
    PutGaps(attempts, zone);
    PutCounts(summary);
    PutPeriods(summary);
    for (const Finding& finding : summary.findings) {
      fmt::print("{} {}\n", Mark("!"), Printable(finding.text));
    }
  }

  void PutRecord(const Record& record, const Device& /*device*/, const Thresholds& /*thresholds*/,
                 const Zone& zone) override {
    const std::string time = record.GetKind() == RecordKind::kFingerSize ? "-------------------"
                                                                         : zone.Text(record.time);
    fmt::print("{} {}{}\n", time, Printable(DumpText(record)),
               record.salvaged ? " (salvaged)" : "");
  }

  void PutReplay(const Replay& replay, const Device& device, bool check_replay,
                 const Zone& zone) override {
    PrintReplay(replay, device, check_replay, zone);
  }

  void PutVerified(const Contents& contents) override {
    size_t salvaged = 0;
    size_t records = 0;
    for (const Snapshot& snapshot : contents.snapshots) {
      records += snapshot.records.size();
      salvaged += std::count_if(snapshot.records.begin(), snapshot.records.end(),
                                [](const Record& record) { return record.salvaged; });
    }
    fmt::print("{}: ", Bold(Printable(contents.name)));
    if (contents.kind == InputKind::kBackup) {
      fmt::print("backup file of {} bytes, the service would load {} records\n", contents.bytes,
                 contents.loaded);
    } else if (contents.kind == InputKind::kDump) {
      fmt::print("text of {} bytes, {} sections, {} records\n", contents.bytes, contents.sections,
                 records);
    } else {
      fmt::print("{} bytes, no record\n", contents.bytes);
    }
    for (const Damage& damage : contents.damage) {
      fmt::print("  {} byte {} ({}): {} ({})\n", Mark("!"), damage.offset,
                 Percent(static_cast<double>(damage.offset) /
                         static_cast<double>(std::max<uint64_t>(contents.bytes, 1))),
                 damage.text, damage.check);
    }
    if (contents.damage_count > contents.damage.size()) {
      fmt::print("  {} more damaged places\n", contents.damage_count - contents.damage.size());
    }
    if (salvaged > 0) {
      fmt::print(
          "  {} records after the damage are readable; other commands include them with "
          "--salvage\n",
          salvaged);
    }
  }

  void PutComparison(const Comparison& comparison, const Zone& zone) override {
    fmt::print("{}\n", Bold(Printable(comparison.verdict)));
    if (const auto& change = comparison.change; change && change->earliest < change->latest) {
      fmt::print("the change happened between {} and {}\n", zone.Text(change->earliest, kMinute),
                 zone.Text(change->latest, kMinute));
    }
    if (comparison.rows.empty()) {
      return;
    }
    PutRow(fmt::format("{:<46}{:<20}{:<20}{:>12}{:>10}", "", comparison.change ? "before" : "A",
                       comparison.change ? "since" : "B", "95 %", "p"));
    for (const CompareRow& row : comparison.rows) {
      PutRow(fmt::format("{} {:<44}{:<20}{:<20}{:>12}{:>10}", row.IsSignificant() ? Mark("!") : " ",
                         Printable(row.title), SideText(row, row.a), SideText(row, row.b),
                         DifferenceText(row), PText(row)));
    }
    fmt::print("{}\n", CompareNote(comparison));
  }

  void PutFleet(const Fleet& fleet, size_t top) override {
    fmt::print("{} inputs, {} with attempts\n", fleet.inputs, fleet.rows.size());
    if (fleet.rows.empty()) {
      return;
    }
    PutWorst(fleet, top);
    PutDistribution(fleet);
    fmt::print("{:<46}{:>9}{:>9}{:>9}\n", "cause", "failures", "devices", "top in");
    for (const auto& [id, cause] : fleet.causes) {
      fmt::print("  {:<44}{:>9}{:>9}{:>9}\n", cause.cause.title, cause.failures, cause.devices,
                 cause.devices_where_top);
    }
  }

 private:
  template <typename Value>
  std::string Bold(const Value& value) const {
    return coloured_ ? fmt::format("\033[1m{}\033[0m", value) : fmt::format("{}", value);
  }
  std::string Mark(const char* text) const {
    return coloured_ ? fmt::format("\033[33m{}\033[0m", text) : text;
  }

  static void PutShares(const Tally& all) {
    fmt::print("no image {}; rejected {}", all.no_image.k, ShareText(all.rejected));
    if (all.rejected.IsLarge()) {
      const Interval range = all.rejected.Range();
      fmt::print("  (95 % interval {:.0f} to {:.0f} %, assuming independent attempts; {} burst{})",
                 100 * range.low, 100 * range.high, all.bursts, all.bursts == 1 ? "" : "s");
    }
    fmt::print("\n");
  }

  static void PutCauses(const Tally& all) {
    if (all.causes.empty()) {
      return;
    }
    const Share& failures = all.causes.front().of_failures;
    PutRow(fmt::format("{:<44}{:>5}{:>8}{:>9}", fmt::format("cause ({} failures)", failures.n), "n",
                       failures.IsLarge() ? "share" : "", failures.IsLarge() ? "95 %" : ""));
    for (const CauseCount& count : all.causes) {
      const Share& share = count.of_failures;
      PutRow(fmt::format("  {:<42}{:>5}{:>8}{:>9}  {}{}{}", Printable(count.cause.title), share.k,
                         share.IsLarge() ? Percent(share.Value()) : "",
                         share.IsLarge() ? RangeText(share) : "", count.cause.meaning,
                         !count.note.empty() && !count.cause.meaning.empty() ? "; " : "",
                         count.note));
    }
  }

  static void PutGaps(const Timeline& attempts, const Zone& zone) {
    for (const Gap& gap : attempts.gaps) {
      fmt::print("  gap: no records from {} to {}{}\n", zone.Text(gap.from, kMinute),
                 zone.Text(gap.to, kMinute),
                 gap.lost_past ? " (older records of a history were lost)" : "");
    }
  }

  static void PutCounts(const Summary& summary) {
    if (summary.enrolled + summary.enroll_failed + summary.deleted > 0) {
      fmt::print("enrollments: {} succeeded, {} failed; {} fingers deleted\n", summary.enrolled,
                 summary.enroll_failed, summary.deleted);
    }
    if (summary.critical_errors > 0) {
      fmt::print("critical errors: {}\n", summary.critical_errors);
    }
    if (summary.finger_sizes > 0) {
      fmt::print("finger sizes: {}\n", summary.finger_sizes);
    }
  }

  static void PutPeriods(const Summary& summary) {
    if (!summary.periods.empty()) {
      fmt::print("{:<16}{:>9}{:>9}  {:<20}{:>9}  {}\n", "period", "attempts", "no image",
                 "rejected", "95 %", "most frequent cause");
    }
    for (const Tally& period : summary.periods) {
      PutRow(fmt::format(
          "{:<16}{:>9}{:>9}  {:<20}{:>9}  {}", period.label, period.attempts, period.no_image.k,
          ShareText(period.rejected), period.rejected.IsLarge() ? RangeText(period.rejected) : "",
          period.causes.empty() ? "" : Printable(period.causes.front().cause.title)));
    }
  }

  void PutWorst(const Fleet& fleet, size_t top) const {
    fmt::print("{:<40}{:>9}{:>9}  {:<20}{:>9}  {}\n", "worst first, by lower bound", "attempts",
               "no image", "rejected", "95 %", "most frequent cause");
    for (size_t i = 0; i < std::min(top, fleet.rows.size()); ++i) {
      const FleetRow& row = fleet.rows[i];
      // The end of a path is more specific than its beginning.
      const std::string name =
          row.name.size() > 38 ? "..." + row.name.substr(row.name.size() - 35) : row.name;
      PutRow(fmt::format("{} {:<38}{:>9}{:>9}  {:<20}{:>9}  {}{}", row.is_outlier ? Mark("!") : " ",
                         Printable(name), row.attempts, row.no_image.k, ShareText(row.rejected),
                         row.rejected.IsLarge() ? RangeText(row.rejected) : "",
                         Printable(row.top_cause.cause.title),
                         row.has_findings ? " (findings: see summary)" : ""));
    }
  }

  static void PutDistribution(const Fleet& fleet) {
    if (fleet.shares.empty()) {
      return;
    }
    std::vector<double> shares = fleet.shares;
    fmt::print("reject rate of {} devices with 20 images or more:", shares.size());
    for (const auto& [name, q] :
         {std::pair("min", 0.0), std::pair("25th percentile", 0.25), std::pair("median", 0.5),
          std::pair("75th", 0.75), std::pair("95th", 0.95), std::pair("max", 1.0)}) {
      fmt::print(" {} {}{}", name, Percent(Quantile(shares, q)), q < 1 ? "," : "\n");
    }
    const auto outliers = std::count_if(fleet.rows.begin(), fleet.rows.end(),
                                        [](const FleetRow& row) { return row.is_outlier; });
    fmt::print("outliers (!): {}, above the median with 99.9 % confidence\n", outliers);
  }

  const bool coloured_ = IsColoured();
};

}  // namespace

std::unique_ptr<Output> MakeTextOutput() { return std::make_unique<TextOutput>(); }

}  // namespace fp_inspect

// SPDX-License-Identifier: Apache-2.0
#include "model/fleet.h"

#include <algorithm>

namespace fp_inspect {

void Fleet::Add(const std::string& name, const Summary& summary) {
  const Tally& all = summary.all;
  ++inputs;
  if (all.attempts == 0) {
    return;
  }
  FleetRow row = {.name = name,
                  .attempts = all.attempts,
                  .no_image = all.no_image,
                  .rejected = all.rejected,
                  .top_cause = all.causes.empty() ? CauseCount() : all.causes.front(),
                  .has_findings = !summary.findings.empty()};
  for (const CauseCount& count : all.causes) {
    CauseInFleet& cause = causes[count.cause.id];
    cause.cause = count.cause;
    cause.failures += count.of_failures.k;
    ++cause.devices;
    cause.devices_where_top += count.cause.id == row.top_cause.cause.id ? 1 : 0;
  }
  rows.push_back(std::move(row));
}

void Fleet::Finish() {
  for (const FleetRow& row : rows) {
    if (row.rejected.IsLarge()) {
      shares.push_back(row.rejected.Value());
    }
  }
  median = Quantile(shares, 0.5);
  for (FleetRow& row : rows) {
    row.is_outlier = row.rejected.n > 0 && row.rejected.Range(kZ999).low > median;
  }
  const auto low = [](const FleetRow& row) {
    return row.rejected.n > 0 ? row.rejected.Range().low : -1;
  };
  std::stable_sort(rows.begin(), rows.end(),
                   [&](const FleetRow& a, const FleetRow& b) { return low(a) > low(b); });
}

}  // namespace fp_inspect

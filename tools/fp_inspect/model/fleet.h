// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>
#include <vector>

#include "model/summary.h"

namespace fp_inspect {

// The data that is kept for each device.
struct FleetRow {
  std::string name;
  size_t attempts = 0;
  Share no_image;
  Share rejected;
  CauseCount top_cause;  // the most frequent one
  bool has_findings = false;
  bool is_outlier = false;
};

struct Fleet {
  void Add(const std::string& name, const Summary& summary);

  // Sorts the rows, worst first by the lower bound of the reject share, and marks the outliers:
  // devices whose share is above the median of the fleet with 99.9 % confidence.
  void Finish();

  struct CauseInFleet {
    Cause cause;
    size_t failures = 0;
    size_t devices = 0;            // that have it
    size_t devices_where_top = 0;  // where it is the most frequent one
  };

  std::vector<FleetRow> rows;  // devices with attempts
  size_t inputs = 0;
  std::map<std::string, CauseInFleet> causes;
  std::vector<double> shares;  // of devices with 20 images or more, sorted
  double median = 0;
};

}  // namespace fp_inspect

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "fp_host/touch_node.h"

namespace fp_host {

struct TimedReport {
  int64_t time_us;  // as recorded
  std::vector<TouchRecord> records;
};

// Reads the recording of PlayTouchRecording(). Returns an empty text, or file, line and reason.
std::string ReadRecording(const std::string& path, const TouchPanel& panel,
                          std::vector<TimedReport>* reports);

}  // namespace fp_host

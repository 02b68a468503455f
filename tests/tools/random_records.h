// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <random>

#include "fp_utils/auth_event.h"
#include "fp_utils/enroll_event.h"

namespace fp_inspect {

// Records with random fields, extreme values among them.
class RandomRecords {
 public:
  explicit RandomRecords(uint64_t seed) : random_(seed) {}

  android::fp_utils::AuthEventG7 Attempt() {
    android::fp_utils::AuthEventG7 event;
    event.timestamp = Integer();
    event.acquired_info = static_cast<int8_t>(Below(4) == 0 ? Integer() : 1);
    event.auth_successful = Below(2) == 0;
    event.t_cov = Float();
    event.t_dist = Float();
    event.lptw = static_cast<uint32_t>(Integer());
    event.rc = static_cast<uint32_t>(Integer());
    for (int32_t* field : {&event.fid, &event.latency, &event.iq, &event.rawmean_delta,
                           &event.packed_metric_1, &event.packed_metric_2, &event.packed_metric_3,
                           &event.extra_metric, &event.foreign_matter_count, &event.match_score}) {
      *field = Integer();
    }
    Fill(event.stitch_img_num_);
    Fill(event.stitch_img_area_);
    return event;
  }

  android::fp_utils::EnrollEventG7 Enrollment() {
    android::fp_utils::EnrollEventG7 event;
    event.timestamp = Integer();
    event.op = static_cast<uint32_t>(Below(4) == 0 ? Integer() : Below(2));
    event.enroll_successful = Below(2) == 0;
    event.iq_avg = Float();
    event.rawmean_delta = Float();
    for (int32_t* field :
         {&event.gid, &event.fid, &event.capture_count, &event.enrolled_fingers_count, &event.rc}) {
      *field = Integer();
    }
    Fill(event.stitch_img_num_);
    Fill(event.stitch_img_area_);
    return event;
  }

 private:
  int32_t Below(int32_t limit) { return static_cast<int32_t>(random_() % limit); }
  // Shifts by a random number of bits, so that small values occur as well.
  int32_t Integer() { return static_cast<int32_t>(random_() >> Below(64)); }
  float Float() {
    constexpr float kExtremes[] = {0,
                                   -0.0F,
                                   9999999,
                                   std::numeric_limits<float>::quiet_NaN(),
                                   -std::numeric_limits<float>::infinity(),
                                   std::numeric_limits<float>::max()};
    return Below(4) == 0 ? kExtremes[Below(std::size(kExtremes))]
                         : static_cast<float>(Integer() % 100000) / 1000;
  }
  void Fill(std::array<int32_t, 5>& slots) {
    std::generate(slots.begin(), slots.end(), [this] { return Integer(); });
  }

  std::mt19937_64 random_;
};

}  // namespace fp_inspect

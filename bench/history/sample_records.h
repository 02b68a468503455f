// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "fp_utils/auth_stats.h"

namespace fp_bench {

// A record as a service fills it; the number varies it.
inline std::shared_ptr<android::fp_utils::AuthEventG7> SampleRecord(int number) {
  auto event = std::make_shared<android::fp_utils::AuthEventG7>();
  event->timestamp = 1772600767 + 60L * number;
  event->acquired_info = 1;
  event->auth_successful = number % 4 != 0;
  event->fid = number % 5;
  event->latency = 200 + number % 90;
  event->iq = 20 + number % 30;
  event->t_cov = 60 + static_cast<float>(number % 400) / 10;
  event->t_dist = static_cast<float>(number % 37) / 10;
  event->lptw = 300 + static_cast<uint32_t>(number) % 1000;
  event->rc = number % 4 == 0 ? 1014 : 0;
  event->rawmean_delta = 1500 + number % 1000;
  event->packed_metric_1 = 230225220;
  event->packed_metric_2 = 90210210;
  event->packed_metric_3 = 125000000 + number;
  event->match_score = 700 + number % 300;
  event->stitch_img_num_ = {1, 2, number % 3, 0, 0};
  event->stitch_img_area_ = {number * 37 % 4000, number * 91 % 4000, 0, 0, 0};
  return event;
}

}  // namespace fp_bench

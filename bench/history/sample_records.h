// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "fp_utils/auth_event.h"
#include "fp_utils/enroll_event.h"

namespace fp_bench {

// Services give fingers random ids of 31 bits.
inline int32_t FingerId(int number) {
  return static_cast<int32_t>(2654435769U * (number + 1) >> 1);
}

// A record as a service fills it. Different numbers give different records.
template <typename Record>
std::shared_ptr<Record> Sample(int number);

template <>
inline std::shared_ptr<android::fp_utils::AuthEventG7> Sample(int number) {
  auto event = std::make_shared<android::fp_utils::AuthEventG7>();
  event->timestamp = 1772600767 + 60L * number;
  event->acquired_info = 1;
  event->auth_successful = number % 4 != 0;
  event->fid = FingerId(number % 5);
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

template <>
inline std::shared_ptr<android::fp_utils::EnrollEventG7> Sample(int number) {
  auto event = std::make_shared<android::fp_utils::EnrollEventG7>();
  event->timestamp = 1772600767 + 60L * number;
  event->enroll_successful = number % 4 != 0;
  event->gid = 10;
  event->fid = FingerId(number);
  event->capture_count = 15 + number % 9;
  event->iq_avg = 30 + static_cast<float>(number % 300) / 10;
  event->enrolled_fingers_count = number % 5;
  event->rc = number % 4;
  event->rawmean_delta = 1500 + static_cast<float>(number % 10000) / 10;
  event->stitch_img_num_ = {3, 4, number % 6, 2, 1};
  event->stitch_img_area_ = {number * 37 % 4000, number * 91 % 4000, number * 53 % 4000, 900, 350};
  return event;
}

}  // namespace fp_bench

// SPDX-License-Identifier: Apache-2.0
#include "reference/plain_auth_event.h"

#include <cstdint>
#include <cstdio>

namespace fp_reference {

using android::fp_utils::AuthEvent;
using android::fp_utils::AuthEventG7;

namespace {

unsigned* U(int32_t& field) { return reinterpret_cast<unsigned*>(&field); }

}  // namespace

std::string PlainBackupString(const AuthEvent& event) {
  char buffer[128];
  snprintf(buffer, sizeof buffer, "0x%lx,0x%x,0x%x,0x%x,0x%x,0x%x",
           static_cast<unsigned long>(event.timestamp), event.acquired_info, event.auth_successful,
           event.fid, event.latency, event.iq);
  return buffer;
}

std::string PlainBackupString(const AuthEventG7& e) {
  char buffer[1024];
  int used = snprintf(buffer, sizeof buffer,
                      ",%.2f,%.2f,%u,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x", e.t_cov, e.t_dist,
                      e.lptw, e.rc, e.rawmean_delta, e.packed_metric_1, e.packed_metric_2,
                      e.packed_metric_3, e.extra_metric, e.foreign_matter_count, e.match_score);
  for (const auto* s : {&e.stitch_img_num_, &e.stitch_img_area_}) {
    used += snprintf(buffer + used, sizeof buffer - static_cast<size_t>(used),
                     ",0x%x,0x%x,0x%x,0x%x,0x%x", (*s)[0], (*s)[1], (*s)[2], (*s)[3], (*s)[4]);
  }
  return PlainBackupString(static_cast<const AuthEvent&>(e)) + buffer;
}

std::regex AuthEventPattern() {
  return std::regex(
      "0x[0-9a-fA-F]+,0x[0-9a-fA-F]+,0x[0-9a-fA-F]+,0x[0-9a-fA-F]+,0x[0-9a-fA-F]+,0x[0-9a-fA-F]+");
}

bool PlainLoad(AuthEvent& event, std::string& text, const std::regex& pattern) {
  unsigned long timestamp = 0;
  unsigned acquired_info = 0;
  unsigned auth_successful = 0;
  if (sscanf(text.c_str(), "0x%lx,0x%x,0x%x,0x%x,0x%x,0x%x", &timestamp, &acquired_info,
             &auth_successful, U(event.fid), U(event.latency), U(event.iq)) < 6) {
    return false;
  }
  event.timestamp = static_cast<time_t>(timestamp);
  event.acquired_info = static_cast<int8_t>(acquired_info);
  event.auth_successful = auth_successful != 0;
  text = std::regex_replace(text, pattern, "", std::regex_constants::format_first_only);
  return true;
}

bool PlainLoad(AuthEventG7& e, std::string& text, const std::regex& pattern) {
  if (!PlainLoad(static_cast<AuthEvent&>(e), text, pattern)) {
    return false;
  }
  auto& num = e.stitch_img_num_;
  auto& area = e.stitch_img_area_;
  return sscanf(text.c_str(),
                ",%f,%f,%u,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,"
                "0x%x,0x%x,0x%x,0x%x",
                &e.t_cov, &e.t_dist, &e.lptw, &e.rc, U(e.rawmean_delta), U(e.packed_metric_1),
                U(e.packed_metric_2), U(e.packed_metric_3), U(e.extra_metric),
                U(e.foreign_matter_count), U(e.match_score), U(num[0]), U(num[1]), U(num[2]),
                U(num[3]), U(num[4]), U(area[0]), U(area[1]), U(area[2]), U(area[3]),
                U(area[4])) == 21;
}

}  // namespace fp_reference

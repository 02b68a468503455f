// SPDX-License-Identifier: Apache-2.0
#include "reference/plain_enroll_event.h"

#include <cstdint>
#include <cstdio>

namespace fp_reference {

using android::fp_utils::EnrollEvent;
using android::fp_utils::EnrollEventG7;

namespace {

unsigned* U(int32_t& field) { return reinterpret_cast<unsigned*>(&field); }

}  // namespace

std::string PlainBackupString(const EnrollEvent& event) {
  char buffer[256];
  snprintf(buffer, sizeof buffer, "0x%lx,%d,0x%x,0x%x,0x%x,0x%x,%.2f,0x%x",
           static_cast<unsigned long>(event.timestamp), event.op, event.enroll_successful,
           event.gid, event.fid, event.capture_count, event.iq_avg, event.enrolled_fingers_count);
  return buffer;
}

std::string PlainBackupString(const EnrollEventG7& e) {
  char buffer[128];
  const auto& n = e.stitch_img_num_;
  const auto& a = e.stitch_img_area_;
  snprintf(buffer, sizeof buffer, ",0x%x,%.2f,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x",
           e.rc, e.rawmean_delta, n[0], n[1], n[2], n[3], n[4], a[0], a[1], a[2], a[3], a[4]);
  return PlainBackupString(static_cast<const EnrollEvent&>(e)) + buffer;
}

std::regex EnrollEventPattern() {
  return std::regex(
      "0x[0-9a-fA-F]+,[0-9]+,0x[0-9a-fA-F]+,0x[0-9a-fA-F]+,0x[0-9a-fA-F]+,0x[0-9a-fA-F]+,"
      "-?[0-9]+([.][0-9]+)?,0x[0-9a-fA-F]+");
}

bool PlainLoad(EnrollEvent& event, std::string& text, const std::regex& pattern) {
  unsigned long timestamp = 0;
  int op = 0;
  unsigned successful = 0;
  if (sscanf(text.c_str(), "0x%lx,%d,0x%x,0x%x,0x%x,0x%x,%f,0x%x", &timestamp, &op, &successful,
             U(event.gid), U(event.fid), U(event.capture_count), &event.iq_avg,
             U(event.enrolled_fingers_count)) < 8) {
    return false;
  }
  event.timestamp = static_cast<time_t>(timestamp);
  event.op = static_cast<uint32_t>(op);
  event.enroll_successful = successful != 0;
  text = std::regex_replace(text, pattern, "", std::regex_constants::format_first_only);
  return true;
}

bool PlainLoad(EnrollEventG7& e, std::string& text, const std::regex& pattern) {
  if (!PlainLoad(static_cast<EnrollEvent&>(e), text, pattern)) {
    return false;
  }
  auto& num = e.stitch_img_num_;
  auto& area = e.stitch_img_area_;
  return sscanf(text.c_str(), ",0x%x,%f,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x,0x%x", U(e.rc),
                &e.rawmean_delta, U(num[0]), U(num[1]), U(num[2]), U(num[3]), U(num[4]), U(area[0]),
                U(area[1]), U(area[2]), U(area[3]), U(area[4])) == 12;
}

}  // namespace fp_reference

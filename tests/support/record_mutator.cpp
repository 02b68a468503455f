// SPDX-License-Identifier: Apache-2.0
#include "support/record_mutator.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <string_view>

namespace fp_test {

using android::fp_utils::AuthEventG7;
using android::fp_utils::EnrollEventG7;

int32_t RecordMutator::Integer() {
  constexpr int32_t kExtremes[] = {0, 1, -1, 15, 16, 255, 256, INT32_MAX, INT32_MIN, -1001};
  switch (Below(3)) {
    case 0:
      return kExtremes[Below(std::size(kExtremes))];
    case 1:
      return static_cast<int32_t>(random_());
    default:
      return static_cast<int32_t>(random_() >> Below(63));
  }
}

float RecordMutator::Float() {
  constexpr float kExtremes[] = {0.0F,
                                 -0.0F,
                                 std::numeric_limits<float>::quiet_NaN(),
                                 -std::numeric_limits<float>::quiet_NaN(),
                                 std::numeric_limits<float>::infinity(),
                                 -std::numeric_limits<float>::infinity(),
                                 std::numeric_limits<float>::denorm_min(),
                                 -std::numeric_limits<float>::min(),
                                 std::numeric_limits<float>::max(),
                                 9999999.0F,
                                 -10000000.0F,
                                 0.005F,
                                 -0.004F};
  switch (Below(4)) {
    case 0:
      return kExtremes[Below(std::size(kExtremes))];
    case 1:
      return __builtin_bit_cast(float, static_cast<uint32_t>(random_()));
    default:
      return static_cast<float>(Integer() % 100000) / 1000;
  }
}

void RecordMutator::Fill(AuthEventG7& event) {
  event.timestamp = Below(2) == 0 ? Integer() : static_cast<time_t>(random_());
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
  for (auto* slots : {&event.stitch_img_num_, &event.stitch_img_area_}) {
    std::generate(slots->begin(), slots->end(), [this] { return Integer(); });
  }
}

void RecordMutator::Fill(EnrollEventG7& event) {
  event.timestamp = Below(2) == 0 ? Integer() : static_cast<time_t>(random_());
  event.op = Below(4) == 0 ? static_cast<uint32_t>(Integer()) : static_cast<uint32_t>(Below(2));
  event.enroll_successful = Below(2) == 0;
  event.iq_avg = Float();
  event.rawmean_delta = Float();
  for (int32_t* field :
       {&event.gid, &event.fid, &event.capture_count, &event.enrolled_fingers_count, &event.rc}) {
    *field = Integer();
  }
  for (auto* slots : {&event.stitch_img_num_, &event.stitch_img_area_}) {
    std::generate(slots->begin(), slots->end(), [this] { return Integer(); });
  }
}

std::string RecordMutator::Damage(std::string text) {
  using namespace std::string_view_literals;
  constexpr std::string_view kCharacters = "0123456789abcdefABCDEFxX,,..-+ \t\n%enip\0"sv;
  for (size_t left = 1 + Below(3); left > 0 && !text.empty(); --left) {
    const size_t at = Below(text.size());
    const char character = kCharacters[Below(kCharacters.size())];
    switch (Below(3)) {
      case 0:
        text[at] = character;
        break;
      case 1:
        text.erase(at, 1);
        break;
      default:
        text.insert(at, 1, character);
    }
  }
  return text;
}

std::string RecordMutator::Mutate(std::string text, const std::string& other) {
  // What scanf takes and a writer never makes: blanks, signs, second prefixes, long numbers,
  // exponents, more than one record.
  constexpr const char* kOddities[] = {
      "0x0x1f", "0x 1f", "0x-1", "0x+1", "0x1ffffffff", "0x00000000000000001",
      "1e5",    "0x1p3", "nan",  "-inf", "4294967296",  "-1",
      " 7",     "0X1f",  "1.",   ".5",   "1.005",       "12345678.00"};
  switch (Below(5)) {
    case 0:
    case 1:
      return text;
    case 2: {
      // One field in an odd spelling.
      size_t from = 0;
      for (size_t field = Below(27); field > 0 && from != std::string::npos; --field) {
        from = text.find(',', from + 1);
      }
      if (from == std::string::npos) {
        return text;
      }
      from += text[from] == ',' ? 1 : 0;
      const size_t end = std::min(text.find(',', from), text.size());
      return text.replace(from, end - from, kOddities[Below(std::size(kOddities))]);
    }
    case 3:
      return Damage(text);
    default:
      return text.substr(0, Below(text.size() + 1)) + other;
  }
}

}  // namespace fp_test

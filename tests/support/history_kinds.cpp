// SPDX-License-Identifier: Apache-2.0
#include "support/history_kinds.h"

#include <cstdio>

#include "fp_utils/auth_stats.h"
#include "fp_utils/crc32.h"
#include "fp_utils/enroll_event_container.h"
#include "fp_utils/finger_sizes.h"

namespace fp_test {
namespace {

using android::fp_utils::AuthEventG7;
using android::fp_utils::AuthStatsG7;
using android::fp_utils::EnrollEventContainer;
using android::fp_utils::EnrollEventG7;
using android::fp_utils::FingerSize;
using android::fp_utils::FingerSizes;

constexpr int kFullSize = 50;

template <typename Records>
std::vector<std::string> TextsOf(const Records& records) {
  std::vector<std::string> texts;
  for (const auto& record : records) {
    texts.push_back(record->ToBackupString());
  }
  return texts;
}

class AuthHistory : public HistoryUnderTest {
 public:
  AuthHistory() { stats_.Init(); }

  void AddAndSave(int number) override {
    auto event = std::make_shared<AuthEventG7>();
    event->timestamp = 1772600767 + number;
    event->acquired_info = 1;
    event->auth_successful = true;
    event->fid = number;
    event->latency = 200 + number % 100;
    event->iq = number % 60;
    event->t_cov = static_cast<float>(number % 400) / 4;
    event->t_dist = static_cast<float>(number % 7) / 2;
    event->rawmean_delta = 1000 - number;
    event->packed_metric_1 = 225220215 + number;
    event->stitch_img_num_ = {number, 2, 3, 4, 5};
    stats_.AddAttempt(event);
  }

  std::vector<std::string> RecordTexts() const override { return TextsOf(stats_.GetAttempts()); }

 private:
  AuthStatsG7 stats_{"0", kFullSize, true};
};

class EnrollHistory : public HistoryUnderTest {
 public:
  EnrollHistory() { container_.Init("EnrollEventG7"); }

  void AddAndSave(int number) override {
    auto event = std::make_shared<EnrollEventG7>();
    event->timestamp = 1772600767 + number;
    event->op = number % 3 == 0 ? EnrollEventG7::kOpDelete : EnrollEventG7::kOpAdd;
    event->enroll_successful = number % 2 == 0;
    event->fid = number;
    event->iq_avg = static_cast<float>(number % 200) / 4;
    event->rc = number % 5;
    event->rawmean_delta = static_cast<float>(-number) / 2;
    event->stitch_img_area_ = {number, 2, 3, 4, 5};
    container_.AddEvent(event);
  }

  std::vector<std::string> RecordTexts() const override { return TextsOf(container_.GetEvents()); }

 private:
  EnrollEventContainer container_;
};

class FingerHistory : public HistoryUnderTest {
 public:
  void AddAndSave(int number) override {
    const auto size = static_cast<float>(number % 1000) / 2;
    sizes_.AddFinger(std::make_shared<FingerSize>(number, size, size / 2), true);
  }

  std::vector<std::string> RecordTexts() const override { return TextsOf(sizes_.GetFingers()); }

 private:
  FingerSizes sizes_{"0", kFullSize, true};
};

}  // namespace

std::vector<HistoryKind> AllHistoryKinds() {
  return {
      {"AuthStats", "/data/vendor/fingerprint/AuthStats.0", kFullSize,
       [] { return std::make_unique<AuthHistory>(); }},
      {"EnrollEventContainer", "/data/vendor/fingerprint/EnrollEventContainer", kFullSize,
       [] { return std::make_unique<EnrollHistory>(); }},
      {"FingerSizes", "/data/vendor/fingerprint/FingerSizes.0", kFullSize,
       [] { return std::make_unique<FingerHistory>(); }},
  };
}

std::string Frame(const std::string& text, uint64_t length) {
  char header[64];
  snprintf(header, sizeof header, "0x%x,0x%lx,", android::fp_utils::crc32(text.data(), text.size()),
           length);
  return header + text;
}

}  // namespace fp_test

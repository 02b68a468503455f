// SPDX-License-Identifier: Apache-2.0
#include "support/history_kinds.h"

#include <cstdio>
#include <utility>

#include "fp_utils/auth_stats.h"
#include "fp_utils/crc32.h"
#include "fp_utils/enroll_event_container.h"
#include "fp_utils/finger_sizes.h"

namespace fp_test {
namespace {

using namespace android::fp_utils;

constexpr int kFullSize = 50;

void Fill(AuthEventG7& event, int number) {
  event = *Attempt(true, number % 60, 1000 - number);
  event.timestamp = 1772600767 + number;
  event.fid = number;
  event.latency = 200 + number % 100;
  event.t_cov = static_cast<float>(number % 400) / 4;
  event.packed_metric_1 = 225220215 + number;
  event.stitch_img_num_ = {number, 2, 3, 4, 5};
}
float& FloatOf(AuthEventG7& event) { return event.t_cov; }

void Fill(EnrollEventG7& event, int number) {
  event.timestamp = 1772600767 + number;
  event.op = number % 3 == 0 ? EnrollEventG7::kOpDelete : EnrollEventG7::kOpAdd;
  event.enroll_successful = number % 2 == 0;
  event.fid = number;
  event.iq_avg = static_cast<float>(number % 200) / 4;
  event.rc = number % 5;
  event.rawmean_delta = static_cast<float>(-number) / 2;
  event.stitch_img_area_ = {number, 2, 3, 4, 5};
}
float& FloatOf(EnrollEventG7& event) { return event.iq_avg; }

void Fill(FingerSize& size, int number) {
  const auto major = static_cast<float>(number % 1000) / 2;
  size = FingerSize(number, major, major / 2);
}
float& FloatOf(FingerSize& size) { return size.minor; }

// The histories with common names: Add() saves, Held() are the records.
struct AuthHistory : AuthStatsG7 {
  AuthHistory() : AuthStatsG7("0", kFullSize, true) { Init(); }
  void Add(std::shared_ptr<AuthEvent> record) { AddAttempt(std::move(record)); }
  const auto& Held() const { return GetAttempts(); }
};

struct EnrollHistory : EnrollEventContainer {
  EnrollHistory() { Init("EnrollEventG7"); }
  void Add(std::shared_ptr<EnrollEvent> record) { AddEvent(std::move(record)); }
  const auto& Held() const { return GetEvents(); }
};

struct FingerHistory : FingerSizes {
  FingerHistory() : FingerSizes("0", kFullSize, true) {}
  void Add(std::shared_ptr<FingerSize> record) { AddFinger(std::move(record), true); }
  const auto& Held() const { return GetFingers(); }
};

template <typename History, typename Record>
class TypedHistory : public HistoryUnderTest {
 public:
  void AddAndSave(int number) override {
    auto record = std::make_shared<Record>();
    Fill(*record, number);
    history_.Add(std::move(record));
  }
  void ShareRecordOf(HistoryUnderTest& other, size_t index) override {
    history_.Add(static_cast<TypedHistory&>(other).history_.Held()[index]);
  }
  void AddNull() override { history_.Add(nullptr); }
  void SetFloat(size_t index, float value) override {
    FloatOf(static_cast<Record&>(*history_.Held()[index])) = value;
  }
  std::vector<std::string> RecordTexts() const override {
    std::vector<std::string> texts;
    for (const auto& record : history_.Held()) {
      texts.push_back(record->ToBackupString());
    }
    return texts;
  }

 private:
  History history_;
};

template <typename History, typename Record>
std::unique_ptr<HistoryUnderTest> Start() {
  return std::make_unique<TypedHistory<History, Record>>();
}

}  // namespace

std::shared_ptr<AuthEventG7> Attempt(bool successful, int32_t iq, int32_t rawmean_delta) {
  auto event = std::make_shared<AuthEventG7>();
  event->acquired_info = AuthEvent::kAcquiredGood;
  event->auth_successful = successful;
  event->iq = iq;
  event->rawmean_delta = rawmean_delta;
  return event;
}

std::vector<HistoryKind> AllHistoryKinds() {
  return {
      {"AuthStats", "/data/vendor/fingerprint/AuthStats.0", kFullSize,
       Start<AuthHistory, AuthEventG7>, "Init", "LoadAttemptsFromBackupFile",
       "SaveAttemptsToBackupFile",
       "[0][void android::fp_utils::AuthStats::LoadAttemptsFromBackupFile()]",
       "[0] AuthEvent is null, ignored"},
      {"EnrollEventContainer", "/data/vendor/fingerprint/EnrollEventContainer", kFullSize,
       Start<EnrollHistory, EnrollEventG7>, "Init", "LoadEventsFromBackupFile",
       "SaveEventsToBackupFile",
       "[void android::fp_utils::EnrollEventContainer::LoadEventsFromBackupFile()]",
       "[AddEvent] EnrollEvent is null, ignored"},
      {"FingerSizes", "/data/vendor/fingerprint/FingerSizes.0", kFullSize,
       Start<FingerHistory, FingerSize>, "FingerSizes", "LoadFingersFromBackupFile",
       "SaveFingersToBackupFile",
       "[0][void android::fp_utils::FingerSizes::LoadFingersFromBackupFile()]",
       "[0] FingerSize is null, ignored"},
  };
}

std::string Frame(const std::string& text, unsigned long long length) {
  char header[64];
  snprintf(header, sizeof header, "0x%x,0x%llx,", crc32(text.data(), text.size()), length);
  return header + text;
}

std::string FramesOf(const std::vector<std::string>& texts) {
  std::string frames;
  for (const std::string& text : texts) {
    frames += Frame(text);
  }
  return frames;
}

}  // namespace fp_test

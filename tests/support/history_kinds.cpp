// SPDX-License-Identifier: Apache-2.0
#include "support/history_kinds.h"

#include <cstdio>
#include <deque>
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
  event.timestamp = 1772600767 + number;
  event.acquired_info = 1;
  event.auth_successful = true;
  event.fid = number;
  event.latency = 200 + number % 100;
  event.iq = number % 60;
  event.t_cov = static_cast<float>(number % 400) / 4;
  event.t_dist = static_cast<float>(number % 7) / 2;
  event.rawmean_delta = 1000 - number;
  event.packed_metric_1 = 225220215 + number;
  event.stitch_img_num_ = {number, 2, 3, 4, 5};
}
float& FloatOf(AuthEvent& event) { return static_cast<AuthEventG7&>(event).t_cov; }

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
float& FloatOf(EnrollEvent& event) { return event.iq_avg; }

void Fill(FingerSize& size, int number) {
  const auto major = static_cast<float>(number % 1000) / 2;
  size = FingerSize(number, major, major / 2);
}
float& FloatOf(FingerSize& size) { return size.minor; }

// A history that holds records of type `Base`; the tests add records of type `Record`.
template <typename Record, typename Base = Record>
class TypedHistory : public HistoryUnderTest {
 public:
  using Records = std::deque<std::shared_ptr<Base>>;
  using Adder = std::function<void(std::shared_ptr<Base>)>;

  // `add` keeps the history alive, which holds `held`.
  TypedHistory(const Records& held, Adder add) : held_(held), add_(std::move(add)) {}

  void AddAndSave(int number) override {
    auto record = std::make_shared<Record>();
    Fill(*record, number);
    add_(std::move(record));
  }
  void ShareRecordOf(HistoryUnderTest& other, size_t index) override {
    add_(static_cast<TypedHistory&>(other).held_[index]);
  }
  void AddNull() override { add_(nullptr); }
  void SetFloat(size_t index, float value) override { FloatOf(*held_[index]) = value; }
  std::vector<std::string> RecordTexts() const override {
    std::vector<std::string> texts;
    for (const auto& record : held_) {
      texts.push_back(record->ToBackupString());
    }
    return texts;
  }

 private:
  const Records& held_;
  const Adder add_;
};

std::unique_ptr<HistoryUnderTest> StartAuthStats() {
  const auto stats = std::make_shared<AuthStatsG7>("0", kFullSize, true);
  stats->Init();
  return std::make_unique<TypedHistory<AuthEventG7, AuthEvent>>(
      stats->GetAttempts(), [stats](auto record) { stats->AddAttempt(std::move(record)); });
}

std::unique_ptr<HistoryUnderTest> StartEnrollEventContainer() {
  const auto container = std::make_shared<EnrollEventContainer>();
  container->Init("EnrollEventG7");
  return std::make_unique<TypedHistory<EnrollEventG7, EnrollEvent>>(
      container->GetEvents(), [container](auto record) { container->AddEvent(std::move(record)); });
}

std::unique_ptr<HistoryUnderTest> StartFingerSizes() {
  const auto sizes = std::make_shared<FingerSizes>("0", kFullSize, true);
  return std::make_unique<TypedHistory<FingerSize>>(
      sizes->GetFingers(), [sizes](auto record) { sizes->AddFinger(std::move(record), true); });
}

}  // namespace

std::vector<HistoryKind> AllHistoryKinds() {
  return {
      {"AuthStats", "/data/vendor/fingerprint/AuthStats.0", kFullSize, StartAuthStats, "Init",
       "LoadAttemptsFromBackupFile", "SaveAttemptsToBackupFile",
       "[0][void android::fp_utils::AuthStats::LoadAttemptsFromBackupFile()]",
       "[0] AuthEvent is null, ignored"},
      {"EnrollEventContainer", "/data/vendor/fingerprint/EnrollEventContainer", kFullSize,
       StartEnrollEventContainer, "Init", "LoadEventsFromBackupFile", "SaveEventsToBackupFile",
       "[void android::fp_utils::EnrollEventContainer::LoadEventsFromBackupFile()]",
       "[AddEvent] EnrollEvent is null, ignored"},
      {"FingerSizes", "/data/vendor/fingerprint/FingerSizes.0", kFullSize, StartFingerSizes,
       "FingerSizes", "LoadFingersFromBackupFile", "SaveFingersToBackupFile",
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

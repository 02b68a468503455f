// SPDX-License-Identifier: Apache-2.0
#include <utility>

#include "common/bounded_text.h"
#include "common/log.h"
#include "fp_utils/auth_stats.h"

namespace android::fp_utils {
namespace {

constexpr char kTag[] = "AuthStatsG7";
constexpr char kRecordClass[] = "AuthEventG7";

// AddAttempt() rejects other records. One that was pushed directly counts as 0.
float RawmeanDelta(AuthEvent& event) {
  return event.GetClassName() != kRecordClass
             ? 0
             : static_cast<float>(static_cast<const AuthEventG7&>(event).rawmean_delta);
}

}  // namespace

AuthStatsG7::~AuthStatsG7() = default;

void AuthStatsG7::Reset() {
  AuthStats::Reset();
  avg_rawmean_delta = 0;
}

void AuthStatsG7::AddAttempt(std::shared_ptr<AuthEvent> event) {
  if (event != nullptr && event->GetClassName() != kRecordClass) {
    FP_LOG_ERROR(kTag, "[%s][%s] AuthEvent is not allowed!", GetName().c_str(),
                 "virtual void android::fp_utils::AuthStatsG7::AddAttempt("
                 "std::shared_ptr<AuthEvent>)");
    return;
  }
  AuthStats::AddAttempt(std::move(event));
}

void AuthStatsG7::PushAttempt(std::shared_ptr<AuthEvent> event) {
  if (event->acquired_info == AuthEvent::kAcquiredGood) {
    avg_rawmean_delta =
        (avg_rawmean_delta * static_cast<float>(GetAuthAttempts()) + RawmeanDelta(*event)) /
        static_cast<float>(GetAuthAttempts() + 1);
  }
  AuthStats::PushAttempt(std::move(event));
}

std::shared_ptr<AuthEvent> AuthStatsG7::PopAttempt() {
  std::shared_ptr<AuthEvent> event = AuthStats::PopAttempt();
  if (event != nullptr && event->acquired_info == AuthEvent::kAcquiredGood) {
    const uint32_t left = GetAuthAttempts();
    avg_rawmean_delta =
        left == 0 ? 0
                  : (avg_rawmean_delta * static_cast<float>(left + 1) - RawmeanDelta(*event)) /
                        static_cast<float>(left);
  }
  return event;
}

std::shared_ptr<AuthEvent> AuthStatsG7::CreateAttempt() { return std::make_shared<AuthEventG7>(); }

std::string AuthStatsG7::ToDebugString() {
  BoundedText<1024> text;
  text.Append(", avg_rawmean_delta:%.2f", avg_rawmean_delta);
  return AuthStats::ToDebugString() + text.ToString();
}

}  // namespace android::fp_utils

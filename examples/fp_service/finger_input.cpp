// SPDX-License-Identifier: Apache-2.0
#include "finger_input.h"

#include <utils/SystemClock.h>

#include "sensor_model.h"
#include "touch_format.h"

namespace fp_service {
namespace {

using android::fp_utils::Ellipse;
using android::fp_utils::fp_state_t;
using android::fp_utils::FpStateTracker;
using android::fp_utils::FpsTouchHandler;
using android::fp_utils::Point;
using android::fp_utils::TouchEvent;

constexpr uint32_t kImageCaptured = 0x205;
constexpr uint32_t kFingerLifted = 0x300;
constexpr unsigned int kTimeoutMs = 1000;

// The square of the screen around the sensor.
FpsTouchHandler::TouchConfig SensingArea() {
  const auto whole = [](float value) { return static_cast<int32_t>(value); };
  return {.left = whole(SensorModel::kCenterX - SensorModel::kRadius),
          .top = whole(SensorModel::kCenterY - SensorModel::kRadius),
          .right = whole(SensorModel::kCenterX + SensorModel::kRadius),
          .bottom = whole(SensorModel::kCenterY + SensorModel::kRadius)};
}

}  // namespace

FingerInput::FingerInput()
    : handler_(FpsTouchHandler::GetInstance()), tracker_(FpStateTracker::GetInstance()) {
  handler_.touch_event_callback_ = [this](const TouchEvent& event) { HandleTouch(event); };
  is_running_ = handler_.Configure(SensingArea()) && handler_.Start();
}

FingerInput::~FingerInput() { handler_.Stop(); }

void FingerInput::HandleTouch(const TouchEvent& event) {
  const Purpose purpose = purpose_;
  if (event.type == touch_format::kDown) {
    const Ellipse contact(Point(event.coords[touch_format::kX], event.coords[touch_format::kY]),
                          event.coords[touch_format::kMajor], event.coords[touch_format::kMinor],
                          event.angle);
    finger_.Set(true, android::uptimeMillis(), contact, purpose == Purpose::kAuthenticate);
    tracker_.UpdateState(static_cast<fp_state_t>(purpose));
  } else if (event.type == touch_format::kUp) {
    finger_.Set(false, android::uptimeMillis(), {}, false);
    tracker_.UpdateState(fp_state_t{kFingerLifted});
  }
}

bool FingerInput::WaitFor(uint32_t state) {
  return is_running_ && tracker_.WaitForState(fp_state_t{state}, kTimeoutMs) == 0;
}

std::optional<FingerInput::Touch> FingerInput::WaitForFinger() {
  if (!WaitFor(static_cast<uint32_t>(purpose_.load()))) {
    return std::nullopt;
  }
  return Touch{.contact = finger_.GetEllipse(), .lptw = finger_.IsLptwEnabled()};
}

void FingerInput::ImageCaptured() { tracker_.UpdateState(fp_state_t{kImageCaptured}); }

void FingerInput::WaitForLift() { WaitFor(kFingerLifted); }

std::string FingerInput::GetDownTime() {
  char text[32];
  tracker_.GetFingerDownTime(text, sizeof text);
  return text;
}

}  // namespace fp_service

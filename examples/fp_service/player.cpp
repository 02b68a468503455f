// SPDX-License-Identifier: Apache-2.0
#include "player.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>

namespace fp_service {

void Player::Play(const Event& event) {
  at_ = event.at;
  phone_.SetTime(at_);
  std::visit([this](const auto& happening) { Happen(happening); }, event.happening);
}

void Player::Happen(const Phase& phase) {
  Say(fmt::format("-- {}", phase.name));
  report_.BeginPhase(phase.name, phone_.GetExposure());
}

void Player::Happen(const Calibrate& calibration) { service_.Calibrate(calibration); }

void Player::Happen(const InitError& error) { service_.ReportInitError(error); }

void Player::Happen(const Light& light) { phone_.SetLux(light.lux); }

template <typename Work>
std::string Player::Touch(Purpose purpose, Skin skin, Aim aim, Work&& work) {
  phone_.SetTime(at_);
  service_.ExpectFinger(purpose);
  phone_.PutFinger(skin, aim);
  work();
  phone_.LiftFinger();
  phone_.RestartDeadHals();
  progress_.Step();
  return service_.FinishTouch();
}

void Player::Happen(const Enroll& enroll) {
  for (int i = 0; i < enroll.captures; ++i, ++at_) {
    Touch(Purpose::kEnroll, Skin::kNormal, enroll.aim, [&] { service_.CaptureForEnrollment(); });
  }
  Say(service_.Enroll(at_, enroll.finger)->ToDebugString());
}

void Player::Happen(const Delete& deletion) {
  Say(service_.Delete(at_, deletion.finger)->ToDebugString());
}

void Player::Happen(const Attempts& attempts) {
  const bool enrolled = service_.IsEnrolled(attempts.finger);
  for (int i = 0; i < attempts.count; ++i, at_ += attempts.every_s) {
    Service::Outcome outcome = {};
    const std::string finger_down = Touch(Purpose::kAuthenticate, attempts.skin, attempts.aim, [&] {
      outcome = service_.Authenticate(at_, attempts.finger);
    });
    report_.Count(*outcome.event, enrolled, outcome.steps, phone_.GetExposure());
    Show(outcome, finger_down);
  }
}

void Player::Happen(const AcquisitionErrors& errors) {
  for (int i = 0; i < errors.count; ++i, at_ += errors.every_s) {
    Service::Outcome outcome = {};
    const std::string finger_down = Touch(Purpose::kAuthenticate, Skin::kNormal, Aim::kGood, [&] {
      outcome = service_.FailToAcquire(at_, errors.info);
    });
    Show(outcome, finger_down);
  }
}

void Player::Happen(const LongPress& press) {
  phone_.LongPress(press.count);
  presses_ += press.count;
  service_.WaitForLongPresses(presses_);
}

void Player::Happen(const Heat& heat) { phone_.SetSkinSeverity(heat.severity); }

void Player::Happen(const DisplayHalDies& /*death*/) {
  Say("the display HAL is about to die");
  phone_.LetDisplayHalDie();
}

void Player::Happen(const Dump& /*dump*/) {
  progress_.Clear();
  fflush(stdout);
  service_.Dump(STDOUT_FILENO);
}

void Player::Show(const Service::Outcome& outcome, const std::string& finger_down) {
  Say(fmt::format("{}, finger down:{}", outcome.event->ToDebugString(), finger_down));
  if (outcome.steps > 0) {
    Say(fmt::format("   exposure is now {:.3f} ms", phone_.GetExposure()));
  }
}

void Player::Say(const std::string& line) {
  progress_.Clear();
  fmt::print("{}\n", line);
}

}  // namespace fp_service

// SPDX-License-Identifier: Apache-2.0
#include "player.h"

#include <fmt/format.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <deque>
#include <sstream>

namespace fp_service {
namespace {

constexpr size_t kRecordsShown = 5;

std::string DumpText(Service& service) {
  const int fd = memfd_create("dump", MFD_CLOEXEC);
  service.Dump(fd);
  std::string text(static_cast<size_t>(lseek(fd, 0, SEEK_END)), '\0');
  text.resize(static_cast<size_t>(std::max<ssize_t>(0, pread(fd, text.data(), text.size(), 0))));
  close(fd);
  return text;
}

}  // namespace

// A record's line begins with its number: "  #000 ".
void PrintDump(Service& service, Output output) {
  std::istringstream lines(DumpText(service));
  std::deque<std::string> newest;
  size_t records = 0;
  const auto print_records = [&] {
    if (records > newest.size()) {
      fmt::print("  ({} older ones, printed with -v)\n", records - newest.size());
    }
    for (const std::string& record : newest) {
      fmt::print("{}\n", record);
    }
    newest.clear();
    records = 0;
  };
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("  #", 0) == 0) {
      ++records;
      newest.push_back(line);
      if (output != Output::kAttempts && newest.size() > kRecordsShown) {
        newest.pop_front();
      }
    } else {
      print_records();
      fmt::print("{}\n", line);
    }
  }
  print_records();
}

void Player::Play(const Event& event) {
  at_ = event.at;
  phone_.SetTime(at_);
  std::visit([this](const auto& data) { Handle(data); }, event.data);
}

void Player::Handle(const Phase& phase) {
  PrintVerbose(fmt::format("-- {}", phase.name));
  report_.BeginPhase(phone_.GetExposure());
}

void Player::Handle(const Calibrate& calibration) {
  service_.Calibrate(calibration);
  report_.Calibrated(calibration.expo_ms);
}

void Player::Handle(const InitError& error) { service_.ReportInitError(error); }

void Player::Handle(const Light& light) { phone_.SetLux(light.lux); }

template <typename Work>
std::string Player::Touch(Purpose purpose, int finger, Skin skin, Placement placement,
                          Work&& work) {
  phone_.SetTime(at_);
  service_.ExpectFinger(purpose);
  phone_.PutFinger(finger, skin, placement);
  work();
  phone_.LiftFinger();
  phone_.RestartDeadHals();
  return service_.FinishTouch();
}

void Player::Handle(const Enroll& enroll) {
  for (int i = 0; i < enroll.captures; ++i, ++at_) {
    Touch(Purpose::kEnroll, enroll.finger, Skin::kNormal, enroll.placement,
          [&] { service_.CaptureForEnrollment(); });
  }
  phone_.SetTime(at_);
  PrintVerbose(service_.Enroll(enroll.finger)->ToDebugString());
}

void Player::Handle(const Delete& deletion) {
  PrintVerbose(service_.Delete(deletion.finger)->ToDebugString());
}

void Player::Handle(const Attempts& attempts) {
  const bool enrolled = service_.IsEnrolled(attempts.finger);
  for (int i = 0; i < attempts.count; ++i, at_ += attempts.every_s) {
    Service::Outcome outcome;
    const std::string finger_down =
        Touch(Purpose::kAuthenticate, attempts.finger, attempts.skin, attempts.placement,
              [&] { outcome = service_.Authenticate(); });
    report_.Count(*outcome.event, enrolled, outcome.steps, phone_.GetExposure());
    PrintAttempt(outcome, finger_down);
  }
}

void Player::Handle(const AcquisitionErrors& errors) {
  for (int i = 0; i < errors.count; ++i, at_ += errors.every_s) {
    Service::Outcome outcome;
    const std::string finger_down =
        Touch(Purpose::kAuthenticate, 0, Skin::kNormal, Placement::kGood,
              [&] { outcome = service_.FailToAcquire(errors.info); });
    PrintAttempt(outcome, finger_down);
  }
}

void Player::Handle(const LongPress& press) {
  phone_.LongPress(press.count);
  presses_ += press.count;
  service_.WaitForLongPresses(presses_);
}

void Player::Handle(const Heat& heat) { phone_.SetSkinSeverity(heat.severity); }

void Player::Handle(const DisplayHalDies& /*death*/) {
  PrintVerbose("the display HAL is about to die");
  phone_.CrashDisplayHalAtNextCall();
}

void Player::Handle(const Dump& /*dump*/) {
  if (output_ != Output::kNothing) {
    PrintDump(service_, output_);
  }
}

void Player::PrintAttempt(const Service::Outcome& outcome, const std::string& finger_down) {
  PrintVerbose(fmt::format("{}, finger down:{}", outcome.event->ToDebugString(), finger_down));
  if (outcome.steps > 0) {
    PrintVerbose(fmt::format("   exposure is now {:.3f} ms", phone_.GetExposure()));
  }
}

void Player::PrintVerbose(const std::string& line) {
  if (output_ == Output::kAttempts) {
    fmt::print("{}\n", line);
  }
}

}  // namespace fp_service

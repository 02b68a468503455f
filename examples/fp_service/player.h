// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ctime>

#include "phone.h"
#include "progress.h"
#include "report.h"
#include "scenario.h"
#include "service.h"

namespace fp_service {

// Plays a scenario's events on the phone and its service, and prints what comes of them.
class Player {
 public:
  Player(Service& service, Phone& phone, int touches)
      : service_(service), phone_(phone), progress_(touches) {}

  void Play(const Event& event);

  const Report& GetReport() const { return report_; }

 private:
  void Happen(const Phase& phase);
  void Happen(const Calibrate& calibration);
  void Happen(const InitError& error);
  void Happen(const Light& light);
  void Happen(const Enroll& enroll);
  void Happen(const Delete& deletion);
  void Happen(const Attempts& attempts);
  void Happen(const AcquisitionErrors& errors);
  void Happen(const LongPress& press);
  void Happen(const Heat& heat);
  void Happen(const DisplayHalDies& death);
  void Happen(const Dump& dump);

  // One touch for `purpose`, during which the service does `work`. Returns when it began.
  template <typename Work>
  std::string Touch(Purpose purpose, Skin skin, Aim aim, Work&& work);
  void Show(const Service::Outcome& outcome, const std::string& finger_down);
  void Say(const std::string& line);

  Service& service_;
  Phone& phone_;
  Progress progress_;
  Report report_;
  time_t at_ = 0;
  int presses_ = 0;
};

}  // namespace fp_service

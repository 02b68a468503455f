// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <ctime>
#include <string>

#include "phone.h"
#include "report.h"
#include "scenario.h"
#include "service.h"

namespace fp_service {

// How much of a scenario is printed while it is played.
enum class Output {
  kNothing,
  kDumps,     // only the newest records of long lists
  kAttempts,  // everything
};

// Prints a dump of the service.
void PrintDump(Service& service, Output output);

// Plays a scenario's events on the phone and its service, and counts the results.
class Player {
 public:
  Player(Service& service, Phone& phone, Report& report, Output output)
      : service_(service), phone_(phone), report_(report), output_(output) {}

  void Play(const Event& event);

 private:
  void Handle(const Phase& phase);
  void Handle(const Calibrate& calibration);
  void Handle(const InitError& error);
  void Handle(const Light& light);
  void Handle(const Enroll& enroll);
  void Handle(const Delete& deletion);
  void Handle(const Attempts& attempts);
  void Handle(const AcquisitionErrors& errors);
  void Handle(const LongPress& press);
  void Handle(const Heat& heat);
  void Handle(const DisplayHalDies& death);
  void Handle(const Restart& /*restart*/) {}  // the parent process restarts the service
  void Handle(const PowerCut& /*cut*/) {}
  void Handle(const Dump& dump);

  // Makes one touch, during which the service does `work`. Returns the time of the finger down.
  template <typename Work>
  std::string Touch(Purpose purpose, int finger, Skin skin, Placement placement, Work&& work);
  void PrintAttempt(const Service::Outcome& outcome, const std::string& finger_down);
  void PrintVerbose(const std::string& line);

  Service& service_;
  Phone& phone_;
  Report& report_;
  Output output_;
  time_t at_ = 0;
  int presses_ = 0;
};

}  // namespace fp_service

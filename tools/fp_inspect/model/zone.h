// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

namespace fp_inspect {

// A time zone: "" is the machine's; others have a name in the zone database ("Europe/Berlin") or
// the form of the variable TZ ("CET-1CEST").
//
// Threading:  conversions switch the zone of the process, so only one thread may use zones, and no
//             other thread may read inputs in the meantime.
class Zone {
 public:
  explicit Zone(std::string name = "");

  static bool Exists(const std::string& name);

  const std::string& GetName() const { return name_; }

  // `wall` is a local time, encoded as if it were UTC. If a clock change repeats an hour, a time in
  // that hour is assumed to be the first of the two.
  int64_t ToEpoch(int64_t wall) const;
  int64_t ToWall(int64_t epoch) const;
  std::string Text(int64_t epoch, const char* format = "%Y-%m-%d %H:%M:%S") const;

 private:
  void Activate() const;

  std::string name_;
};

}  // namespace fp_inspect

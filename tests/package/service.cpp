// SPDX-License-Identifier: Apache-2.0
//
// A service outside the project, with classes of its own derived from the library's.
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <android/binder_process.h>

#include "fp_utils/als_monitor.h"
#include "fp_utils/auth_stats.h"
#include "fp_utils/sensor_listener.h"
#include "fp_utils/shapes.h"

namespace {

using namespace android::fp_utils;

struct Attempt : AuthEventG7 {
  std::string ToDebugString() const override { return "attempt"; }
};

struct LeftHalf : IShape {
  std::string Print() const override { return "LeftHalf"; }
  bool Contains(Point const& p) const override { return p.x < 5; }
};

struct WideCircle : Circle {
  bool Contains(Point const& p) const override { return p.x < 5; }
};

void Check(bool holds, const char* what) {
  if (!holds) {
    fprintf(stderr, "fails: %s\n", what);
    exit(1);
  }
}

}  // namespace

int main() {
  ABinderProcess_setThreadPoolMaxThreadCount(1);
  ABinderProcess_startThreadPool();

  AuthStatsG7 stats("consumer", 10, false);
  stats.Init();
  stats.AddAttempt(stats.CreateAttempt());
  stats.AddAttempt(std::make_shared<AuthEvent>());
  const auto attempt = std::make_shared<Attempt>();
  attempt->acquired_info = AuthEvent::kAcquiredGood;
  attempt->rawmean_delta = 7;
  stats.AddAttempt(attempt);
  Check(stats.GetTotalAttempts() == 2, "a G7 history takes G7 records and those derived from them");
  Check(stats.GetAvgRawmeanDelta() == 7, "statistics over a record of the service");

  const Rect ten({0, 0}, {9, 9});
  Check(ten.CoverageCoveredBy(LeftHalf()) == 50, "coverage by a shape of the service");
  Check(ten.CoverageCoveredBy(WideCircle()) == 50, "coverage by a class derived from Circle");
  Check(ten.CoverageCoveredBy(static_cast<const IShape&>(Circle({5, 5}, 0.5F))) == 1,
        "coverage by a circle");

  const SensorListener listener;
  Check(!listener.IsAnySamplerStarted(), "no sensor samples at first");
  Check(AlsMonitor::GetInstance()->ConnectSensorManagerIfNeeded(), "sensor manager");
  puts(stats.ToDebugString().c_str());
}

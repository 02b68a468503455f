// SPDX-License-Identifier: Apache-2.0
#include <cstdio>

#include "fp_utils/als_monitor.h"
#include "fp_utils/auth_stats.h"
#include "fp_utils/sensor_listener.h"

int main() {
  android::fp_utils::AuthStatsG7 stats("consumer", 10, false);
  stats.Init();
  stats.AddAttempt(stats.CreateAttempt());
  puts(stats.ToDebugString().c_str());
  const android::fp_utils::SensorListener listener;
  const bool has_sensors =
      android::fp_utils::AlsMonitor::GetInstance()->ConnectSensorManagerIfNeeded();
  return stats.GetTotalAttempts() == 1 && has_sensors && !listener.IsAnySamplerStarted() ? 0 : 1;
}

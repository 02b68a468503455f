// SPDX-License-Identifier: Apache-2.0
#include <cstdio>

#include <android/binder_process.h>

#include "fp_utils/als_monitor.h"
#include "fp_utils/auth_stats.h"
#include "fp_utils/sensor_listener.h"

using namespace android::fp_utils;

int main() {
  ABinderProcess_setThreadPoolMaxThreadCount(1);
  ABinderProcess_startThreadPool();

  AuthStatsG7 stats("consumer", 10, false);
  stats.Init();
  stats.AddAttempt(stats.CreateAttempt());
  puts(stats.ToDebugString().c_str());
  const SensorListener listener;
  const bool has_sensors = AlsMonitor::GetInstance()->ConnectSensorManagerIfNeeded();
  return stats.GetTotalAttempts() == 1 && has_sensors && !listener.IsAnySamplerStarted() ? 0 : 1;
}

// SPDX-License-Identifier: Apache-2.0
#include <cstdio>

#include "fp_utils/auth_stats.h"

int main() {
  android::fp_utils::AuthStatsG7 stats("consumer", 10, false);
  stats.Init();
  stats.AddAttempt(stats.CreateAttempt());
  puts(stats.ToDebugString().c_str());
  return stats.GetTotalAttempts() == 1 ? 0 : 1;
}

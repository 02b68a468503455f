// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <cstdio>

#include <android/binder_process.h>

#include "touch_service.h"

int main() {
  ABinderProcess_setThreadPoolMaxThreadCount(1);
  ABinderProcess_startThreadPool();  // delivers the deaths of HALs
  TouchService service([] { puts("image"); });
  if (!service.Start()) {
    puts("no touch device");
    return 1;
  }
  pause();
}

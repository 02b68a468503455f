// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>

#include <utils/Thread.h>

#include "fp_utils/fps_touch_handler.h"

namespace android::fp_utils {

// Waits for the touch device and a cancel pipe, and has the handler read the device.
//
// Threading:  Init, Start and Stop are called with the handler's lock held; the rest runs on the
//             worker itself.
class FpsTouchHandler::TouchPollingWorkerThread : public android::Thread {
 public:
  explicit TouchPollingWorkerThread(FpsTouchHandler* handler);
  ~TouchPollingWorkerThread() override;

  bool Init();
  bool Start();
  bool Stop();

  // Tells the worker to end and does not wait for it: the caller is the worker itself.
  void RequestEnd();

 private:
  bool CreateCancelPipe();
  void WriteCancelEvent();
  void ReadAndClearCancelEvent();
  void pollFds();
  bool threadLoop() override;

  void BackOff();

  FpsTouchHandler* const handler_;                     // Not owned; outlives the worker's run.
  std::array<int32_t, 2> cancel_pipe_fds_ = {-1, -1};  // read end, write end

  bool device_failed_ = false;  // at the last poll; the failure has been logged
  int backoff_ms_ = 0;          // the last pause; 0 while the device works
};

}  // namespace android::fp_utils

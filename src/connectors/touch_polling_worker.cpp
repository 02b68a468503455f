// SPDX-License-Identifier: Apache-2.0
#include "connectors/touch_polling_worker.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <thread>

#include "common/log.h"

namespace android::fp_utils {
namespace {

constexpr char kTag[] = "FpsTouchHandler";
constexpr char kThreadName[] = "TouchPollingWorkerThread";

// Pause after a failure of the device: 10 ms, doubling to 1 s.
constexpr int kFirstBackoffMs = 10;
constexpr int kLongestBackoffMs = 1000;

}  // namespace

FpsTouchHandler::TouchPollingWorkerThread::TouchPollingWorkerThread(FpsTouchHandler* handler)
    : handler_(handler) {}

FpsTouchHandler::TouchPollingWorkerThread::~TouchPollingWorkerThread() {
  FP_LOG_DEBUG(kTag, "%s", "~TouchPollingWorkerThread");
  for (const int32_t fd : cancel_pipe_fds_) {
    if (fd >= 0) {
      close(fd);
    }
  }
}

bool FpsTouchHandler::TouchPollingWorkerThread::Init() {
  if (!CreateCancelPipe()) {
    FP_LOG_ERROR(kTag, "%s: failed to create stop pipe", "Init");
    return false;
  }
  return true;
}

bool FpsTouchHandler::TouchPollingWorkerThread::Start() {
  if (!isRunning()) {
    run(kThreadName, 0, 0);
  }
  return true;
}

bool FpsTouchHandler::TouchPollingWorkerThread::Stop() {
  if (isRunning()) {
    requestExit();
    WriteCancelEvent();
    requestExitAndWait();
  }
  return true;
}

void FpsTouchHandler::TouchPollingWorkerThread::RequestEnd() {
  requestExit();
  WriteCancelEvent();
}

bool FpsTouchHandler::TouchPollingWorkerThread::CreateCancelPipe() {
  int fds[2];
  // NOLINTNEXTLINE(android-cloexec-pipe): the pipe has only O_NONBLOCK, set below
  if (pipe(fds) != 0) {
    FP_LOG_ERROR(kTag, "%s: could not create stop pipe: %s", "CreateCancelPipe", strerror(errno));
    return false;
  }
  cancel_pipe_fds_ = {fds[0], fds[1]};
  if (fcntl(cancel_pipe_fds_[0], F_SETFL, O_NONBLOCK) != 0) {
    FP_LOG_ERROR(kTag, "%s: could not make stop read pipe non-blocking: %s", "CreateCancelPipe",
                 strerror(errno));
    return false;
  }
  if (fcntl(cancel_pipe_fds_[1], F_SETFL, O_NONBLOCK) != 0) {
    FP_LOG_ERROR(kTag, "%s: could not make stop write pipe non-blocking: %s", "CreateCancelPipe",
                 strerror(errno));
    return false;
  }
  return true;
}

void FpsTouchHandler::TouchPollingWorkerThread::WriteCancelEvent() {
  FP_LOG_INFO(kTag, "%s: write cancel event", "WriteCancelEvent");
  if (cancel_pipe_fds_[1] < 0) {
    FP_LOG_ERROR(kTag, "%s: invalid fd\n", "WriteCancelEvent");
    return;
  }
  if (write(cancel_pipe_fds_[1], "W", 1) < 1) {
    FP_LOG_ERROR(kTag, "%s: failed to write cancel event(errno=%d)\n", "WriteCancelEvent", errno);
  }
}

void FpsTouchHandler::TouchPollingWorkerThread::ReadAndClearCancelEvent() {
  if (cancel_pipe_fds_[0] < 0) {
    FP_LOG_ERROR(kTag, "%s: invalid fd\n", "ReadAndClearCancelEvent");
    return;
  }
  char chunk[16];
  while (read(cancel_pipe_fds_[0], chunk, sizeof chunk) == sizeof chunk) {
  }
}

void FpsTouchHandler::TouchPollingWorkerThread::pollFds() {
  pollfd fds[2] = {{.fd = handler_->touch_fd_, .events = POLLIN, .revents = 0},
                   {.fd = cancel_pipe_fds_[0], .events = POLLIN, .revents = 0}};
  const int result = poll(fds, 2, -1);
  if (result < 0) {
    const int error = errno;
    FP_LOG_ERROR(kTag, "%s: poll failed (errno=%d)\n", "pollFds", error);
    if (error != EINTR) {  // a signal says nothing about the device
      BackOff();
    }
  } else if (result == 0) {
    FP_LOG_INFO(kTag, "%s: timed out", "pollFds");
  } else if ((fds[1].revents & POLLIN) != 0) {
    FP_LOG_INFO(kTag, "%s: received cancel event", "pollFds");
    ReadAndClearCancelEvent();
  } else if ((fds[0].revents & POLLIN) != 0 && handler_->ReadTouchEvent()) {
    device_failed_ = false;
    backoff_ms_ = 0;
  } else {
    if (!device_failed_) {
      FP_LOG_ERROR(kTag, "%s: touch device failed (revents=0x%x)", "pollFds", fds[0].revents);
    }
    device_failed_ = true;
    BackOff();
  }
}

// A device that has hung up is always ready, and without a pause the loop would keep a core busy.
// The cancel pipe ends the pause.
void FpsTouchHandler::TouchPollingWorkerThread::BackOff() {
  backoff_ms_ = std::clamp(2 * backoff_ms_, kFirstBackoffMs, kLongestBackoffMs);
  pollfd cancel = {.fd = cancel_pipe_fds_[0], .events = POLLIN, .revents = 0};
  if (poll(&cancel, 1, backoff_ms_) < 0 && !exitPending()) {
    usleep(kFirstBackoffMs * 1000);
  }
}

bool FpsTouchHandler::TouchPollingWorkerThread::threadLoop() {
  handler_->worker_id_ = std::this_thread::get_id();
  device_failed_ = false;
  backoff_ms_ = 0;
  FP_LOG_DEBUG(kTag, "%s starting", "threadLoop");
  if (handler_->configured_) {
    do {
      if (exitPending()) {
        break;
      }
      pollFds();
    } while (handler_->configured_);
  }
  FP_LOG_DEBUG(kTag, "%s exiting", "threadLoop");
  handler_->worker_id_ = std::thread::id();
  return true;  // the thread ends because its exit is pending
}

}  // namespace android::fp_utils

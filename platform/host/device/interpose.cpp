// SPDX-License-Identifier: Apache-2.0
//
// The system calls of the simulated device. This library is linked ahead of libc, so the program,
// the library under test and the platform's libraries call these definitions. Each maps its path,
// checks for faults and calls libc's function. paths.cpp has the calls without faults.
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>

#include "device/clock.h"
#include "device/faults.h"
#include "device/next.h"
#include "device/touch.h"
#include "device/tree.h"

namespace {

using fp_host::Call;
using fp_host::CheckFault;
using fp_host::Next;
using fp_host::TreePath;

// Looked up when the library is loaded: the thread sanitizer calls pipe() when it starts its
// symbolizer, where dlsym() would crash.
decltype(pipe)* NextPipe() {
  NEXT(pipe);
  return next;
}
[[maybe_unused]] decltype(pipe)* const kNextPipe = NextPipe();

// Reads the optional argument after `last`. If the caller passed none, the value is arbitrary and
// libc ignores it.
#define OPTIONAL_ARGUMENT(Type, name, last)  \
  va_list arguments;                         \
  va_start(arguments, last);                 \
  Type const name = va_arg(arguments, Type); \
  va_end(arguments)

using OpenFunction = int(const char*, int, ...);

int Open(OpenFunction* next, const char* path, int flags, mode_t mode) {
  const TreePath resolved(path);
  const bool is_touch_node = fp_host::IsTouchNode(path);
  if (!resolved.IsOnDevice() && !is_touch_node) {
    return next(path, flags, mode);
  }
  if (CheckFault(Call::kOpen).fails) {
    return -1;
  }
  const int fd = is_touch_node ? fp_host::OpenTouchNode() : next(resolved.Get(), flags, mode);
  fp_host::Track(fd);
  return fd;
}

int OpenAt(decltype(openat)* next, int folder, const char* path, int flags, mode_t mode) {
  const TreePath resolved(path);
  if (!resolved.IsOnDevice()) {
    return next(folder, path, flags, mode);
  }
  return Open(Next<OpenFunction>("open"), path, flags, mode);
}

// The reads and writes of stdio cannot be interposed. A FILE that is opened while a fault of read
// or write is set uses these functions instead.
ssize_t CookieRead(void* cookie, char* buffer, size_t size) {
  return read(*static_cast<int*>(cookie), buffer, size);
}
ssize_t CookieWrite(void* cookie, const char* buffer, size_t size) {
  // Like stdio on a file: continues after a short write, and stops at an error.
  size_t done = 0;
  while (done < size) {
    const ssize_t written = write(*static_cast<int*>(cookie), buffer + done, size - done);
    if (written < 0) {
      break;
    }
    done += static_cast<size_t>(written);
  }
  return static_cast<ssize_t>(done);
}
int CookieClose(void* cookie) {
  const std::unique_ptr<int> fd(static_cast<int*>(cookie));
  return close(*fd);
}

int FlagsOf(const char* mode) {
  const bool both = strchr(mode, '+') != nullptr;
  const int access = both ? O_RDWR : mode[0] == 'r' ? O_RDONLY : O_WRONLY;
  const int creation = mode[0] == 'w' ? O_CREAT | O_TRUNC : mode[0] == 'a' ? O_CREAT | O_APPEND : 0;
  return access | creation | (strchr(mode, 'e') != nullptr ? O_CLOEXEC : 0);
}

FILE* OpenThroughCookie(const char* path, const char* mode) {
  const int fd = open(path, FlagsOf(mode), 0666);
  if (fd < 0) {
    return nullptr;
  }
  return fopencookie(
      new int(fd), mode,
      {.read = CookieRead, .write = CookieWrite, .seek = nullptr, .close = CookieClose});
}

FILE* Fopen(decltype(fopen)* next, const char* path, const char* mode) {
  const TreePath resolved(path);
  if (!resolved.IsOnDevice()) {
    return next(path, mode);
  }
  if (CheckFault(Call::kFopen).fails) {
    return nullptr;
  }
  return fp_host::AreTransfersFaulty() ? OpenThroughCookie(path, mode) : next(resolved.Get(), mode);
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  NEXT(open);
  OPTIONAL_ARGUMENT(mode_t, mode, flags);
  return Open(next, path, flags, mode);
}

int open64(const char* path, int flags, ...) {
  NEXT(open64);
  OPTIONAL_ARGUMENT(mode_t, mode, flags);
  return Open(next, path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...) {
  NEXT(openat);
  OPTIONAL_ARGUMENT(mode_t, mode, flags);
  return OpenAt(next, folder, path, flags, mode);
}

int openat64(int folder, const char* path, int flags, ...) {
  NEXT(openat64);
  OPTIONAL_ARGUMENT(mode_t, mode, flags);
  return OpenAt(next, folder, path, flags, mode);
}

FILE* fopen(const char* path, const char* mode) {
  NEXT(fopen);
  return Fopen(next, path, mode);
}

FILE* fopen64(const char* path, const char* mode) {
  NEXT(fopen64);
  return Fopen(next, path, mode);
}

int mkdir(const char* path, mode_t mode) {
  NEXT(mkdir);
  const TreePath resolved(path);
  if (resolved.IsOnDevice() && CheckFault(Call::kMkdir).fails) {
    return -1;
  }
  return next(resolved.Get(), mode);
}

int unlink(const char* path) {
  NEXT(unlink);
  const TreePath resolved(path);
  if (resolved.IsOnDevice() && CheckFault(Call::kUnlink).fails) {
    return -1;
  }
  return next(resolved.Get());
}

int rename(const char* from, const char* to) {
  NEXT(rename);
  const TreePath resolved_from(from);
  const TreePath resolved_to(to);
  const bool is_on_device = resolved_from.IsOnDevice() || resolved_to.IsOnDevice();
  if (is_on_device && CheckFault(Call::kRename).fails) {
    return -1;
  }
  return next(resolved_from.Get(), resolved_to.Get());
}

ssize_t read(int fd, void* buffer, size_t size) {
  NEXT(read);
  if (fp_host::IsTracked(fd)) {
    const fp_host::FaultResult fault = CheckFault(Call::kRead);
    return fault.fails ? -1 : next(fd, buffer, std::min(size, fault.limit));
  }
  return next(fd, buffer, size);
}

ssize_t write(int fd, const void* buffer, size_t size) {
  NEXT(write);
  if (fp_host::IsTracked(fd)) {
    const fp_host::FaultResult fault = CheckFault(Call::kWrite);
    return fault.fails ? -1 : next(fd, buffer, std::min(size, fault.limit));
  }
  return next(fd, buffer, size);
}

int ioctl(int fd, unsigned long request, ...) {
  NEXT(ioctl);
  OPTIONAL_ARGUMENT(void*, argument, request);
  if (fp_host::IsTracked(fd) && CheckFault(Call::kIoctl).fails) {
    return -1;
  }
  return fp_host::IsTouchDescriptor(fd) ? fp_host::TakeTouchRequest(request, argument)
                                        : next(fd, request, argument);
}

int poll(pollfd* fds, nfds_t count, int timeout) {
  NEXT(poll);
  return CheckFault(Call::kPoll).fails ? -1 : next(fds, count, timeout);
}

int pipe(int fds[2]) {
  auto* const next = NextPipe();
  if (CheckFault(Call::kPipe).fails) {
    return -1;
  }
  const int result = next(fds);
  if (result == 0) {
    fp_host::Track(fds[0]);
    fp_host::Track(fds[1]);
  }
  return result;
}

int fcntl(int fd, int command, ...) {
  NEXT(fcntl);
  OPTIONAL_ARGUMENT(void*, argument, command);
  return CheckFault(Call::kFcntl).fails ? -1 : next(fd, command, argument);
}

int close(int fd) {
  NEXT(close);
  fp_host::Untrack(fd);
  fp_host::ForgetTouchDescriptor(fd);
  return next(fd);
}

time_t time(time_t* out) {
  NEXT(time);
  const auto simulated = fp_host::SimulatedWallClock();
  if (!simulated) {
    return next(out);
  }
  if (out != nullptr) {
    *out = simulated->tv_sec;
  }
  return simulated->tv_sec;
}

int gettimeofday(timeval* out, void* zone) {
  NEXT(gettimeofday);
  const auto simulated = fp_host::SimulatedWallClock();
  if (!simulated) {
    return next(out, zone);
  }
  *out = {.tv_sec = simulated->tv_sec, .tv_usec = simulated->tv_nsec / 1000};
  return 0;
}

int clock_gettime(clockid_t clock, timespec* out) {
  NEXT(clock_gettime);
  const auto simulated = fp_host::SimulatedWallClock();
  if (!simulated || clock != CLOCK_REALTIME) {
    return next(clock, out);
  }
  *out = *simulated;
  return 0;
}

}  // extern "C"

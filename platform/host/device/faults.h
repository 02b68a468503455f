// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

// What the interposed calls ask of the levers in control/faults.h.

namespace fp_host {

enum class Call { kOpen, kFopen, kMkdir, kUnlink, kRead, kWrite, kIoctl, kPoll, kPipe, kFcntl };

struct Verdict {
  bool fails = false;
  ssize_t limit = -1;  // bytes to move at most; negative: no limit
};

// Counts the call if a fault is set for it and says what becomes of it; a failing one has errno
// set.
Verdict Judge(Call call);

// Whether reads or writes are to be disturbed, also those that stdio makes.
bool AreTransfersFaulty();

// The descriptors whose transfers count: those of device files and of pipes.
void Track(int fd);
void Untrack(int fd);
bool IsTracked(int fd);

}  // namespace fp_host

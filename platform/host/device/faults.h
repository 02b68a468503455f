// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>

// What the interposed calls ask of the faults in control/faults.h.

namespace fp_host {

enum class Call { kOpen, kFopen, kMkdir, kUnlink, kRead, kWrite, kIoctl, kPoll, kPipe, kFcntl };

struct FaultResult {
  bool fails = false;
  size_t limit = SIZE_MAX;  // bytes to move at most
};

// Counts the call if a fault is set for it, and tells its result. Sets errno if the call fails.
FaultResult CheckFault(Call call);

// Whether reads or writes are to be disturbed, also those that stdio makes.
bool AreTransfersFaulty();

// The descriptors whose transfers count: those of device files and of pipes.
void Track(int fd);
void Untrack(int fd);
bool IsTracked(int fd);

}  // namespace fp_host

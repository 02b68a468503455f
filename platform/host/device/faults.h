// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>

// The faults of fp_host/faults.h, as the interposed calls use them.

namespace fp_host {

enum class Call {
  kOpen,
  kFopen,
  kMkdir,
  kUnlink,
  kRename,
  kRead,
  kWrite,
  kIoctl,
  kPoll,
  kPipe,
  kFcntl
};

struct FaultResult {
  bool fails = false;
  size_t limit = SIZE_MAX;  // bytes to move at most
};

// Counts the call if a fault is set for it, and returns what the fault does to it. Sets errno if
// the call fails.
FaultResult CheckFault(Call call);

// Whether a fault of read or write is set.
bool AreTransfersFaulty();

// Faults of read and write apply to tracked descriptors: those of device files and of pipes.
void Track(int fd);
void Untrack(int fd);
bool IsTracked(int fd);

}  // namespace fp_host

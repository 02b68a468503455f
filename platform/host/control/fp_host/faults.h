// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <string>

// Faults injected into the system calls of programs that are linked with the simulated device.

namespace fp_host {

struct Fault {
  static constexpr int kForever = -1;

  // open, fopen, mkdir, unlink, read, write, ioctl, poll, pipe or fcntl. Calls that take a path
  // fail only for device paths. read, write and ioctl fail only for descriptors of device files and
  // of pipes; read and write also fail inside a FILE that was opened while a fault of either was
  // set. poll, pipe and fcntl fail for every caller.
  std::string function;
  int first_call = 1;  // the first to fail; 1 is the next call after the fault is set
  int calls = 1;       // how many calls in a row fail, or kForever
  int error = 0;       // errno of a failing call
  // For read and write: if not negative, transfer at most this many bytes instead of failing.
  ssize_t shorten_to = -1;
};

// Sets the fault of a function and replaces the one it had; aborts if the function is not one of
// those above.
void SetFault(const Fault& fault);
void ClearFaults();

// The number of calls of `function` since its fault was set.
int CountedCalls(const std::string& function);

}  // namespace fp_host

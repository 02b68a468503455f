// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <string>

// Faults on the system calls of programs linked with the simulated device.

namespace fp_host {

struct Fault {
  static constexpr int kForever = -1;

  // open, fopen, mkdir, unlink, read, write, ioctl, poll, pipe or fcntl. Calls with a path fail for
  // device paths. read, write and ioctl fail for descriptors of device files and of pipes; read and
  // write also inside a FILE that was opened while a fault of either was set. poll, pipe and fcntl
  // fail for every caller.
  std::string function;
  int first_call = 1;  // counted from when the fault is set
  int calls = 1;       // how many calls in a row fail, or kForever
  int error = 0;       // errno of a failing call
  // For read and write: transfer at most this many bytes instead of failing, unless negative.
  ssize_t shorten_to = -1;
};

// Sets the fault of a function, one at a time; aborts on an unknown function.
void SetFault(const Fault& fault);
void ClearFaults();

// The number of calls of `function` since its fault was set.
int CountedCalls(const std::string& function);

}  // namespace fp_host

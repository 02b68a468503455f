// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <string>

#include "fp_host/scoped.h"

// Faults injected into the system calls of programs that are linked with the simulated device. They
// do not reach child processes.
//
// Threading:  any thread may call any function. Calls under way are not affected. A call that
//             starts while its fault is being set may or may not get the fault.

namespace fp_host {

struct Fault {
  static constexpr int kForever = -1;

  // open, fopen, mkdir, unlink, rename, read, write, ioctl, poll, pipe or fcntl. Calls that take a
  // path fail only for device paths. read, write and ioctl fail only for descriptors of device
  // files and of pipes; read and write also fail inside a FILE that was opened while a fault of
  // either was set. poll, pipe and fcntl fail for every caller.
  std::string function;
  int first_call = 1;  // the first to fail; 1 is the next call after the fault is set
  int calls = 1;       // how many calls in a row fail, or kForever
  int error = 0;       // errno of a failing call
  // For read and write: if not negative, transfer at most this many bytes instead of failing.
  ssize_t shorten_to = -1;
};

// Sets the fault of a function and replaces the one it had. Aborts with a message if the
// function is unknown, if the fault applies to no call, or if it has neither an error nor a length
// to which it shortens read or write.
void SetFault(const Fault& fault);
void ClearFault(const std::string& function);
void ClearFaults();

// The number of calls of `function`, failing or not, since its fault was last set. It stays after
// the fault is cleared.
int CallsSinceFaultSet(const std::string& function);

class ScopedFault : public Scoped {
 public:
  explicit ScopedFault(const Fault& fault) : function_(fault.function) { SetFault(fault); }
  ~ScopedFault() { ClearFault(function_); }

 private:
  const std::string function_;
};

}  // namespace fp_host

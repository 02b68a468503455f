// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <dlfcn.h>

#include <cstdlib>

namespace fp_host {

// libc's definition of the interposed function `name`. Hidden, because RTLD_NEXT is relative to the
// library that this copy is in.
template <typename Function>
[[gnu::visibility("hidden")]] Function* Next(const char* name) {
  auto* function = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
  if (function == nullptr) {
    abort();
  }
  return function;
}

}  // namespace fp_host

#define NEXT(name) static auto* const next = fp_host::Next<decltype(name)>(#name)

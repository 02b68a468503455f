// SPDX-License-Identifier: Apache-2.0
#include "support/allocations.h"

#include <cstdlib>
#include <new>

namespace {

thread_local uint64_t allocations = 0;

}  // namespace

uint64_t fp_test::Allocations() { return allocations; }

void* operator new(size_t size) {
  ++allocations;
  void* const memory = malloc(size);
  if (memory == nullptr) {
    abort();
  }
  return memory;
}

void operator delete(void* memory) noexcept { free(memory); }
void operator delete(void* memory, size_t /*size*/) noexcept { free(memory); }

// SPDX-License-Identifier: Apache-2.0
#include "support/platform_calls.h"

#include <dlfcn.h>

#include <atomic>

#include <android/binder_ibinder.h>
#include <android/binder_manager.h>

namespace fp_test {
namespace {

std::atomic<bool> recording = false;
std::atomic<uint64_t> trace_tags = 0;

template <typename Function>
Function* Next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

void RecordCalls(bool record) { recording = record; }

void RecordCall(const std::string& call) {
  if (recording) {
    fp_host::AddLogLine(Call(call));
  }
}

void SetTraceTags(uint64_t tags) { trace_tags = tags; }

}  // namespace fp_test

#define NEXT(name) static auto* const next = fp_test::Next<decltype(name)>(#name)

extern "C" {

bool AServiceManager_isDeclared(const char* instance) {
  NEXT(AServiceManager_isDeclared);
  fp_test::RecordCall(std::string("isDeclared ") + instance);
  return next(instance);
}

AIBinder* AServiceManager_waitForService(const char* instance) {
  NEXT(AServiceManager_waitForService);
  fp_test::RecordCall(std::string("waitForService ") + instance);
  return next(instance);
}

AIBinder_DeathRecipient* AIBinder_DeathRecipient_new(
    AIBinder_DeathRecipient_onBinderDied on_binder_died) {
  NEXT(AIBinder_DeathRecipient_new);
  fp_test::RecordCall("DeathRecipient_new");
  return next(on_binder_died);
}

void AIBinder_DeathRecipient_delete(AIBinder_DeathRecipient* recipient) {
  NEXT(AIBinder_DeathRecipient_delete);
  fp_test::RecordCall(recipient == nullptr ? "DeathRecipient_delete null"
                                           : "DeathRecipient_delete");
  next(recipient);
}

binder_status_t AIBinder_linkToDeath(AIBinder* binder, AIBinder_DeathRecipient* recipient,
                                     void* cookie) {
  NEXT(AIBinder_linkToDeath);
  fp_test::RecordCall("linkToDeath");
  return next(binder, recipient, cookie);
}

uint64_t atrace_get_enabled_tags() { return fp_test::trace_tags; }
void atrace_begin_body(const char* name) {
  fp_test::RecordCall(std::string("begin of trace section ") + name);
}
void atrace_end_body() { fp_test::RecordCall("end of trace section"); }

}  // extern "C"

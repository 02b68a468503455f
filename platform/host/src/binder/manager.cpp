// SPDX-License-Identifier: Apache-2.0
#include "binder/manager.h"

#include <android/binder_manager.h>
#include <android/binder_process.h>

#include "ipc/pool.h"
#include "ipc/registry.h"

using fp_host::ipc::BinderPool;
using fp_host::ipc::Registry;

namespace fp_host::binder {

std::shared_ptr<void> ToEntry(const ndk::SpAIBinder& binder) {
  AIBinder_incStrong(binder.get());
  return {static_cast<void*>(binder.get()),
          [](void* entry) { AIBinder_decStrong(static_cast<AIBinder*>(entry)); }};
}

namespace {

AIBinder* FromEntry(const std::shared_ptr<void>& entry) {
  auto* binder = static_cast<AIBinder*>(entry.get());
  AIBinder_incStrong(binder);
  return binder;
}

}  // namespace
}  // namespace fp_host::binder

binder_exception_t AServiceManager_addService(AIBinder* binder, const char* instance) {
  if (binder == nullptr || instance == nullptr) {
    return EX_ILLEGAL_ARGUMENT;
  }
  AIBinder_incStrong(binder);
  Registry::Get().Add(instance, fp_host::binder::ToEntry(ndk::SpAIBinder(binder)));
  return EX_NONE;
}

AIBinder* AServiceManager_checkService(const char* instance) {
  return instance == nullptr ? nullptr
                             : fp_host::binder::FromEntry(Registry::Get().Check(instance));
}

AIBinder* AServiceManager_waitForService(const char* instance) {
  return instance == nullptr ? nullptr : fp_host::binder::FromEntry(Registry::Get().Wait(instance));
}

bool AServiceManager_isDeclared(const char* instance) {
  return instance != nullptr && Registry::Get().IsDeclared(instance);
}

void ABinderProcess_startThreadPool() { BinderPool().Start(); }

bool ABinderProcess_setThreadPoolMaxThreadCount(uint32_t num_threads) {
  BinderPool().SetMaxMoreThreads(num_threads);
  return true;
}

bool ABinderProcess_isThreadPoolStarted() { return BinderPool().IsStarted(); }

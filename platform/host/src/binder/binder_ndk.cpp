// SPDX-License-Identifier: Apache-2.0
//
// The C functions of the binder NDK on top of AIBinder's classes.
#include <android/binder_ibinder.h>
#include <android/binder_manager.h>
#include <android/binder_process.h>

#include "binder/ibinder.h"
#include "ipc/pool.h"
#include "ipc/registry.h"

using fp_host::binder::DeathLink;
using fp_host::binder::LocalBinder;
using fp_host::binder::RemoteBinder;
using fp_host::ipc::BinderPool;
using fp_host::ipc::Registry;

// Not locked: no client links one recipient from several threads at once.
struct AIBinder_DeathRecipient {
  const AIBinder_DeathRecipient_onBinderDied on_died;
  std::vector<std::shared_ptr<DeathLink>> links;
};

void AIBinder_incStrong(AIBinder* binder) {
  if (binder != nullptr) {
    binder->IncStrong();
  }
}

void AIBinder_decStrong(AIBinder* binder) {
  if (binder != nullptr) {
    binder->DecStrong();
  }
}

int32_t AIBinder_debugGetRefCount(AIBinder* binder) {
  return binder == nullptr ? -1 : binder->CountStrong();
}

binder_status_t AIBinder_dump(AIBinder* binder, int fd, const char** args, uint32_t num_args) {
  if (binder == nullptr) {
    return STATUS_UNEXPECTED_NULL;
  }
  if (LocalBinder* local = binder->AsLocal()) {
    return local->GetImplementation()->dump(fd, args, num_args);
  }
  RemoteBinder* remote = binder->AsRemote();
  binder_status_t status = STATUS_OK;
  const bool answered = remote->Call(
      [&] { status = remote->GetTarget()->GetImplementation()->dump(fd, args, num_args); });
  return answered ? status : STATUS_DEAD_OBJECT;
}

AIBinder_DeathRecipient* AIBinder_DeathRecipient_new(AIBinder_DeathRecipient_onBinderDied on_died) {
  return on_died == nullptr ? nullptr : new AIBinder_DeathRecipient{on_died, {}};
}

void AIBinder_DeathRecipient_delete(AIBinder_DeathRecipient* recipient) { delete recipient; }

binder_status_t AIBinder_linkToDeath(AIBinder* binder, AIBinder_DeathRecipient* recipient,
                                     void* cookie) {
  if (binder == nullptr || recipient == nullptr) {
    return STATUS_UNEXPECTED_NULL;
  }
  RemoteBinder* remote = binder->AsRemote();
  if (remote == nullptr) {
    return STATUS_INVALID_OPERATION;
  }
  BinderPool().WarnUnlessStarted("A death notification");
  recipient->links.push_back(std::make_shared<DeathLink>(DeathLink{recipient->on_died, cookie}));
  return remote->Link(recipient->links.back());
}

AIBinder* AServiceManager_waitForService(const char* instance) {
  const auto entry = std::static_pointer_cast<ndk::SpAIBinder>(Registry::Get().Wait(instance));
  AIBinder* binder = entry == nullptr ? nullptr : entry->get();
  AIBinder_incStrong(binder);
  return binder;
}

bool AServiceManager_isDeclared(const char* instance) {
  return Registry::Get().IsDeclared(instance);
}

void ABinderProcess_startThreadPool() { BinderPool().Start(); }

bool ABinderProcess_setThreadPoolMaxThreadCount(uint32_t num_threads) {
  BinderPool().SetMaxMoreThreads(num_threads);
  return true;
}

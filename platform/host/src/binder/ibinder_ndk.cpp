// SPDX-License-Identifier: Apache-2.0
//
// The C functions of <android/binder_ibinder.h> on top of AIBinder's classes; those on death
// recipients are in death.cpp.
#include <android/binder_ibinder.h>
#include <android/log.h>

#include "binder/ibinder.h"

using fp_host::binder::LocalBinder;
using fp_host::binder::RemoteBinder;

struct AIBinder_Weak {
  const std::shared_ptr<fp_host::binder::WeakCell> cell;
};

AIBinder_Class* AIBinder_Class_define(const char* interface_descriptor,
                                      AIBinder_Class_onCreate on_create,
                                      AIBinder_Class_onDestroy on_destroy,
                                      AIBinder_Class_onTransact on_transact) {
  if (interface_descriptor == nullptr || on_create == nullptr || on_destroy == nullptr ||
      on_transact == nullptr) {
    return nullptr;
  }
  // Calls are made as C++ calls on the implementation, so onTransact is never needed.
  return new AIBinder_Class{interface_descriptor, on_create, on_destroy};
}

void AIBinder_Class_setOnDump(AIBinder_Class* clazz, AIBinder_onDump on_dump) {
  clazz->on_dump = on_dump;
}

AIBinder* AIBinder_new(const AIBinder_Class* clazz, void* args) {
  return clazz == nullptr ? nullptr : new LocalBinder(clazz, args);
}

bool AIBinder_isRemote(const AIBinder* binder) {
  return binder != nullptr && const_cast<AIBinder*>(binder)->AsRemote() != nullptr;
}

bool AIBinder_isAlive(const AIBinder* binder) {
  if (binder == nullptr) {
    return false;
  }
  const RemoteBinder* remote = const_cast<AIBinder*>(binder)->AsRemote();
  return remote == nullptr || remote->IsAlive();
}

binder_status_t AIBinder_ping(AIBinder* binder) {
  if (binder == nullptr) {
    return STATUS_UNEXPECTED_NULL;
  }
  RemoteBinder* remote = binder->AsRemote();
  return remote == nullptr || remote->Ping() ? STATUS_OK : STATUS_DEAD_OBJECT;
}

binder_status_t AIBinder_dump(AIBinder* binder, int fd, const char** args, uint32_t num_args) {
  if (binder == nullptr) {
    return STATUS_UNEXPECTED_NULL;
  }
  if (LocalBinder* local = binder->AsLocal()) {
    return local->Dump(fd, args, num_args);
  }
  RemoteBinder* remote = binder->AsRemote();
  binder_status_t status = STATUS_OK;
  const bool answered =
      remote->Call([&] { status = remote->GetTarget()->Dump(fd, args, num_args); });
  return answered ? status : STATUS_DEAD_OBJECT;
}

bool AIBinder_associateClass(AIBinder* binder, const AIBinder_Class* clazz) {
  return binder != nullptr && clazz != nullptr && binder->Associate(clazz);
}

const AIBinder_Class* AIBinder_getClass(AIBinder* binder) {
  return binder == nullptr ? nullptr : binder->GetClass();
}

void* AIBinder_getUserData(AIBinder* binder) {
  LocalBinder* local = binder == nullptr ? nullptr : binder->AsLocal();
  return local == nullptr ? nullptr : local->GetUserData();
}

bool AIBinder_lt(const AIBinder* lhs, const AIBinder* rhs) {
  return std::less<const AIBinder*>()(lhs, rhs);
}

void AIBinder_incStrong(AIBinder* binder) {
  if (binder != nullptr) {
    binder->IncStrong();
  }
}

void AIBinder_decStrong(AIBinder* binder) {
  if (binder == nullptr) {
    __android_log_print(ANDROID_LOG_ERROR, "libbinder_ndk", "%s: on null binder", __func__);
    return;
  }
  binder->DecStrong();
}

int32_t AIBinder_debugGetRefCount(AIBinder* binder) {
  return binder == nullptr ? -1 : binder->CountStrong();
}

AIBinder_Weak* AIBinder_Weak_new(AIBinder* binder) {
  return binder == nullptr ? nullptr : new AIBinder_Weak{binder->GetWeakCell()};
}

void AIBinder_Weak_delete(AIBinder_Weak* weak_binder) { delete weak_binder; }

AIBinder* AIBinder_Weak_promote(AIBinder_Weak* weak_binder) {
  if (weak_binder == nullptr) {
    return nullptr;
  }
  ndk::SpAIBinder binder = Promote(*weak_binder->cell);
  AIBinder* promoted = binder.get();
  AIBinder_incStrong(promoted);
  return promoted;
}

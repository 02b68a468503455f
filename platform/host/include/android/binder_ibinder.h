// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdint.h>
#include <sys/cdefs.h>

#include <android/binder_status.h>

__BEGIN_DECLS

// A reference-counted object that calls can be made on: a local one, implemented in this process,
// or the proxy of an object of another process. While it is held, one object has one pointer.
struct AIBinder;
typedef struct AIBinder AIBinder;
struct AIBinder_DeathRecipient;
typedef struct AIBinder_DeathRecipient AIBinder_DeathRecipient;

typedef void (*AIBinder_DeathRecipient_onBinderDied)(void* cookie);

// Null is ignored.
void AIBinder_incStrong(AIBinder* binder);
void AIBinder_decStrong(AIBinder* binder);
int32_t AIBinder_debugGetRefCount(AIBinder* binder);

// Calls dump() of the implementation, in whichever process it is.
binder_status_t AIBinder_dump(AIBinder* binder, int fd, const char** args, uint32_t numArgs);

// The callback runs on a thread of the binder pool.
AIBinder_DeathRecipient* AIBinder_DeathRecipient_new(
    AIBinder_DeathRecipient_onBinderDied onBinderDied) __attribute__((warn_unused_result));
// Drops all links. A notification that is being delivered still runs to its end. Null is ignored.
void AIBinder_DeathRecipient_delete(AIBinder_DeathRecipient* recipient);

// STATUS_INVALID_OPERATION for a local object, STATUS_DEAD_OBJECT for one whose death was announced
// before. The notification is cancelled when the last strong reference to `binder` is dropped.
binder_status_t AIBinder_linkToDeath(AIBinder* binder, AIBinder_DeathRecipient* recipient,
                                     void* cookie);

__END_DECLS

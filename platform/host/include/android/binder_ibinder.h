// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdint.h>
#include <sys/cdefs.h>

#include <android/binder_status.h>

__BEGIN_DECLS

typedef uint32_t transaction_code_t;

struct AParcel;
typedef struct AParcel AParcel;

// A reference-counted object that calls can be made on. In one process one pointer stands for one
// object while it is held: a local one, implemented here, or a remote one, the proxy of an object
// of another process.
struct AIBinder;
typedef struct AIBinder AIBinder;

struct AIBinder_Class;
typedef struct AIBinder_Class AIBinder_Class;
struct AIBinder_Weak;
typedef struct AIBinder_Weak AIBinder_Weak;
struct AIBinder_DeathRecipient;
typedef struct AIBinder_DeathRecipient AIBinder_DeathRecipient;

typedef void* (*AIBinder_Class_onCreate)(void* args);
typedef void (*AIBinder_Class_onDestroy)(void* userData);
typedef binder_status_t (*AIBinder_Class_onTransact)(AIBinder* binder, transaction_code_t code,
                                                     const AParcel* in, AParcel* out);
typedef binder_status_t (*AIBinder_onDump)(AIBinder* binder, int fd, const char** args,
                                           uint32_t numArgs);
typedef void (*AIBinder_DeathRecipient_onBinderDied)(void* cookie);
typedef void (*AIBinder_DeathRecipient_onBinderUnlinked)(void* cookie);

// Classes are never released. Null if an argument is.
AIBinder_Class* AIBinder_Class_define(const char* interfaceDescriptor,
                                      AIBinder_Class_onCreate onCreate,
                                      AIBinder_Class_onDestroy onDestroy,
                                      AIBinder_Class_onTransact onTransact)
    __attribute__((warn_unused_result));
void AIBinder_Class_setOnDump(AIBinder_Class* clazz, AIBinder_onDump onDump);

// A local object with one strong reference, the caller's.
AIBinder* AIBinder_new(const AIBinder_Class* clazz, void* args) __attribute__((warn_unused_result));
bool AIBinder_isRemote(const AIBinder* binder);
// What is known without a call: a remote object is dead after a call has failed for that reason
// or its death was announced.
bool AIBinder_isAlive(const AIBinder* binder);
binder_status_t AIBinder_ping(AIBinder* binder);
binder_status_t AIBinder_dump(AIBinder* binder, int fd, const char** args, uint32_t numArgs);
// False if the object is of another interface, or dead before its interface was known.
bool AIBinder_associateClass(AIBinder* binder, const AIBinder_Class* clazz);
const AIBinder_Class* AIBinder_getClass(AIBinder* binder);
// What the class's onCreate made of a local object; null for a remote one.
void* AIBinder_getUserData(AIBinder* binder);
bool AIBinder_lt(const AIBinder* lhs, const AIBinder* rhs);

void AIBinder_incStrong(AIBinder* binder);
void AIBinder_decStrong(AIBinder* binder);
// -1 for null.
int32_t AIBinder_debugGetRefCount(AIBinder* binder);

AIBinder_Weak* AIBinder_Weak_new(AIBinder* binder) __attribute__((warn_unused_result));
void AIBinder_Weak_delete(AIBinder_Weak* weakBinder);
// Null if the object is gone, else one more strong reference.
AIBinder* AIBinder_Weak_promote(AIBinder_Weak* weakBinder) __attribute__((warn_unused_result));

// The callback runs on a thread of the binder pool. Null for a null callback.
AIBinder_DeathRecipient* AIBinder_DeathRecipient_new(
    AIBinder_DeathRecipient_onBinderDied onBinderDied) __attribute__((warn_unused_result));
// Set it before linking. Runs once per link, when nothing will use the link's cookie any more: the
// only moment at which a cookie of its own can be freed.
void AIBinder_DeathRecipient_setOnUnlinked(AIBinder_DeathRecipient* recipient,
                                           AIBinder_DeathRecipient_onBinderUnlinked onUnlinked);
// Drops all links. A notification that is under way still ends.
void AIBinder_DeathRecipient_delete(AIBinder_DeathRecipient* recipient);

// Refused for a local object and for one whose death was announced before. Needs a strong reference
// to `binder` to be kept: dropping the last cancels the notification.
binder_status_t AIBinder_linkToDeath(AIBinder* binder, AIBinder_DeathRecipient* recipient,
                                     void* cookie);
// Drops the newest link of this binder and cookie.
binder_status_t AIBinder_unlinkToDeath(AIBinder* binder, AIBinder_DeathRecipient* recipient,
                                       void* cookie);

__END_DECLS

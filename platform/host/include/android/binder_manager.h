// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/cdefs.h>

#include <android/binder_ibinder.h>
#include <android/binder_status.h>

__BEGIN_DECLS

// Makes a service of this process known; it keeps a reference of its own. Returns an exception
// code, EX_NONE for success.
__attribute__((warn_unused_result)) binder_exception_t AServiceManager_addService(
    AIBinder* binder, const char* instance);

// Both return a strong reference that belongs to the caller. check does not wait: null if the
// service is not up. wait blocks until it is: null only if the service manager fails.
__attribute__((warn_unused_result)) AIBinder* AServiceManager_checkService(const char* instance);
__attribute__((warn_unused_result)) AIBinder* AServiceManager_waitForService(const char* instance);

// Whether the device's manifest names the instance, which does not mean that it is up.
bool AServiceManager_isDeclared(const char* instance);

__END_DECLS

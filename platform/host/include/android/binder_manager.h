// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdbool.h>
#include <sys/cdefs.h>

#include <android/binder_ibinder.h>

__BEGIN_DECLS

// Waits until the service is up. The strong reference that it returns belongs to the caller; null
// if the service manager fails.
__attribute__((warn_unused_result)) AIBinder* AServiceManager_waitForService(const char* instance);

// Whether the device's manifest names the instance, which does not mean that it is up.
bool AServiceManager_isDeclared(const char* instance);

__END_DECLS

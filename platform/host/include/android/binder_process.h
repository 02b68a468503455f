// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdbool.h>
#include <stdint.h>
#include <sys/cdefs.h>

__BEGIN_DECLS

// The threads that deliver calls from other processes, and deaths. Until a service starts them,
// nothing is delivered. Services configure the pool, libraries must not.
void ABinderProcess_startThreadPool(void);
// How many threads may join the first as need arises; 15 unless set.
bool ABinderProcess_setThreadPoolMaxThreadCount(uint32_t numThreads);

__END_DECLS

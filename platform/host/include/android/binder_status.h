// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <errno.h>
#include <stdbool.h>
#include <stdint.h>
#include <sys/cdefs.h>

__BEGIN_DECLS

enum {
  STATUS_OK = 0,
  STATUS_UNKNOWN_ERROR = (-2147483647 - 1),
  STATUS_NO_MEMORY = -ENOMEM,
  STATUS_INVALID_OPERATION = -ENOSYS,
  STATUS_BAD_VALUE = -EINVAL,
  STATUS_BAD_TYPE = STATUS_UNKNOWN_ERROR + 1,
  STATUS_NAME_NOT_FOUND = -ENOENT,
  STATUS_PERMISSION_DENIED = -EPERM,
  STATUS_NO_INIT = -ENODEV,
  STATUS_ALREADY_EXISTS = -EEXIST,
  STATUS_DEAD_OBJECT = -EPIPE,
  STATUS_FAILED_TRANSACTION = STATUS_UNKNOWN_ERROR + 2,
  STATUS_BAD_INDEX = -EOVERFLOW,
  STATUS_NOT_ENOUGH_DATA = -ENODATA,
  STATUS_WOULD_BLOCK = -EWOULDBLOCK,
  STATUS_TIMED_OUT = -ETIMEDOUT,
  STATUS_UNKNOWN_TRANSACTION = -EBADMSG,
  STATUS_FDS_NOT_ALLOWED = STATUS_UNKNOWN_ERROR + 7,
  STATUS_UNEXPECTED_NULL = STATUS_UNKNOWN_ERROR + 8,
};
typedef int32_t binder_status_t;

enum {
  EX_NONE = 0,
  EX_SECURITY = -1,
  EX_BAD_PARCELABLE = -2,
  EX_ILLEGAL_ARGUMENT = -3,
  EX_NULL_POINTER = -4,
  EX_ILLEGAL_STATE = -5,
  EX_NETWORK_MAIN_THREAD = -6,
  EX_UNSUPPORTED_OPERATION = -7,
  EX_SERVICE_SPECIFIC = -8,
  EX_PARCELABLE = -9,
  // Reserved for the transport's own errors.
  EX_TRANSACTION_FAILED = -129,
};
typedef int32_t binder_exception_t;

// The result of a call: ok, an exception of the service, or an error of the transport.
struct AStatus;
typedef struct AStatus AStatus;

// The caller owns a new status and releases it with AStatus_delete().
AStatus* AStatus_newOk(void) __attribute__((warn_unused_result));
AStatus* AStatus_fromExceptionCodeWithMessage(binder_exception_t exception, const char* message)
    __attribute__((warn_unused_result));
AStatus* AStatus_fromStatus(binder_status_t status) __attribute__((warn_unused_result));
void AStatus_delete(AStatus* status);

// None of these takes null.
bool AStatus_isOk(const AStatus* status);
binder_exception_t AStatus_getExceptionCode(const AStatus* status);
// STATUS_OK unless the exception is EX_TRANSACTION_FAILED.
binder_status_t AStatus_getStatus(const AStatus* status);
// Never null; lives as long as the status.
const char* AStatus_getMessage(const AStatus* status);

__END_DECLS

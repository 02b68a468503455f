// SPDX-License-Identifier: Apache-2.0
#include <string>

#include <android/binder_status.h>

struct AStatus {
  const binder_exception_t exception;
  const binder_status_t status;
  const std::string message;
};

AStatus* AStatus_newOk() { return AStatus_fromStatus(STATUS_OK); }

AStatus* AStatus_fromExceptionCodeWithMessage(binder_exception_t exception, const char* message) {
  return new AStatus{exception,
                     exception == EX_TRANSACTION_FAILED ? STATUS_FAILED_TRANSACTION : STATUS_OK,
                     message};
}

AStatus* AStatus_fromStatus(binder_status_t status) {
  return new AStatus{status == STATUS_OK ? EX_NONE : EX_TRANSACTION_FAILED, status, ""};
}

void AStatus_delete(AStatus* status) { delete status; }

bool AStatus_isOk(const AStatus* status) { return status->exception == EX_NONE; }

binder_exception_t AStatus_getExceptionCode(const AStatus* status) { return status->exception; }

binder_status_t AStatus_getStatus(const AStatus* status) { return status->status; }

const char* AStatus_getMessage(const AStatus* status) { return status->message.c_str(); }

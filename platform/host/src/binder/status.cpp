// SPDX-License-Identifier: Apache-2.0
#include <string>

#include <android/binder_status.h>

#include "device/misuse.h"

struct AStatus {
  const binder_exception_t exception;
  const binder_status_t status;
  const std::string message;
};

namespace {

const AStatus& Checked(const AStatus* status) {
  if (status == nullptr) {
    fp_host::AbortForMisuse("A ScopedAStatus that holds no status was asked for it.");
  }
  return *status;
}

}  // namespace

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

bool AStatus_isOk(const AStatus* status) { return Checked(status).exception == EX_NONE; }

binder_exception_t AStatus_getExceptionCode(const AStatus* status) {
  return Checked(status).exception;
}

binder_status_t AStatus_getStatus(const AStatus* status) { return Checked(status).status; }

const char* AStatus_getMessage(const AStatus* status) { return Checked(status).message.c_str(); }

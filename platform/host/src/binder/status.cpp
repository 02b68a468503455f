// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>
#include <cstring>
#include <string>

#include <android/binder_status.h>
#include <android/log.h>

struct AStatus {
  binder_exception_t exception = EX_NONE;
  int32_t service_specific = 0;
  binder_status_t status = STATUS_OK;
  std::string message = {};
};

namespace {

struct Name {
  int32_t value;
  const char* text;
};

constexpr Name kStatusNames[] = {
    {STATUS_OK, "OK"},
    {STATUS_UNKNOWN_ERROR, "UNKNOWN_ERROR"},
    {STATUS_NO_MEMORY, "NO_MEMORY"},
    {STATUS_INVALID_OPERATION, "INVALID_OPERATION"},
    {STATUS_BAD_VALUE, "BAD_VALUE"},
    {STATUS_BAD_TYPE, "BAD_TYPE"},
    {STATUS_NAME_NOT_FOUND, "NAME_NOT_FOUND"},
    {STATUS_PERMISSION_DENIED, "PERMISSION_DENIED"},
    {STATUS_NO_INIT, "NO_INIT"},
    {STATUS_ALREADY_EXISTS, "ALREADY_EXISTS"},
    {STATUS_DEAD_OBJECT, "DEAD_OBJECT"},
    {STATUS_FAILED_TRANSACTION, "FAILED_TRANSACTION"},
    {STATUS_BAD_INDEX, "BAD_INDEX"},
    {STATUS_NOT_ENOUGH_DATA, "NOT_ENOUGH_DATA"},
    {STATUS_WOULD_BLOCK, "WOULD_BLOCK"},
    {STATUS_TIMED_OUT, "TIMED_OUT"},
    {STATUS_UNKNOWN_TRANSACTION, "UNKNOWN_TRANSACTION"},
    {STATUS_FDS_NOT_ALLOWED, "FDS_NOT_ALLOWED"},
    {STATUS_UNEXPECTED_NULL, "UNEXPECTED_NULL"},
};

constexpr Name kExceptionNames[] = {
    {EX_NONE, "EX_NONE"},
    {EX_SECURITY, "EX_SECURITY"},
    {EX_BAD_PARCELABLE, "EX_BAD_PARCELABLE"},
    {EX_ILLEGAL_ARGUMENT, "EX_ILLEGAL_ARGUMENT"},
    {EX_NULL_POINTER, "EX_NULL_POINTER"},
    {EX_ILLEGAL_STATE, "EX_ILLEGAL_STATE"},
    {EX_NETWORK_MAIN_THREAD, "EX_NETWORK_MAIN_THREAD"},
    {EX_UNSUPPORTED_OPERATION, "EX_UNSUPPORTED_OPERATION"},
    {EX_SERVICE_SPECIFIC, "EX_SERVICE_SPECIFIC"},
    {EX_PARCELABLE, "EX_PARCELABLE"},
    {EX_TRANSACTION_FAILED, "EX_TRANSACTION_FAILED"},
};

template <size_t N>
const char* NameOf(int32_t value, const Name (&names)[N]) {
  for (const Name& name : names) {
    if (name.value == value) {
      return name.text;
    }
  }
  return nullptr;
}

template <size_t N>
int32_t Prune(int32_t value, const Name (&names)[N], int32_t catch_all) {
  if (NameOf(value, names) != nullptr) {
    return value;
  }
  __android_log_print(ANDROID_LOG_WARN, "libbinder_ndk", "Unknown code %d is taken for %d", value,
                      catch_all);
  return catch_all;
}

AStatus* const kOk = new AStatus;  // outlives every user

AStatus* NewStatus(AStatus status) {
  return status.exception == EX_NONE ? kOk : new AStatus(std::move(status));
}

}  // namespace

AStatus* AStatus_newOk() { return kOk; }

AStatus* AStatus_fromExceptionCode(binder_exception_t exception) {
  return AStatus_fromExceptionCodeWithMessage(exception, "");
}

AStatus* AStatus_fromExceptionCodeWithMessage(binder_exception_t exception, const char* message) {
  exception = Prune(exception, kExceptionNames, EX_TRANSACTION_FAILED);
  const binder_status_t status =
      exception == EX_TRANSACTION_FAILED ? STATUS_FAILED_TRANSACTION : STATUS_OK;
  return NewStatus({.exception = exception, .status = status, .message = message});
}

AStatus* AStatus_fromServiceSpecificError(int32_t service_specific) {
  return AStatus_fromServiceSpecificErrorWithMessage(service_specific, "");
}

AStatus* AStatus_fromServiceSpecificErrorWithMessage(int32_t service_specific,
                                                     const char* message) {
  return NewStatus(
      {.exception = EX_SERVICE_SPECIFIC, .service_specific = service_specific, .message = message});
}

AStatus* AStatus_fromStatus(binder_status_t status) {
  status = Prune(status, kStatusNames, STATUS_UNKNOWN_ERROR);
  return NewStatus(
      {.exception = status == STATUS_OK ? EX_NONE : EX_TRANSACTION_FAILED, .status = status});
}

bool AStatus_isOk(const AStatus* status) { return status->exception == EX_NONE; }

binder_exception_t AStatus_getExceptionCode(const AStatus* status) { return status->exception; }

int32_t AStatus_getServiceSpecificError(const AStatus* status) { return status->service_specific; }

binder_status_t AStatus_getStatus(const AStatus* status) { return status->status; }

const char* AStatus_getMessage(const AStatus* status) { return status->message.c_str(); }

const char* AStatus_getDescription(const AStatus* status) {
  if (AStatus_isOk(status)) {
    return strdup("No error");
  }
  std::string detail;
  if (status->exception == EX_SERVICE_SPECIFIC) {
    detail = std::to_string(status->service_specific) + ": ";
  } else if (status->exception == EX_TRANSACTION_FAILED) {
    detail = std::string(NameOf(status->status, kStatusNames)) + ": ";
  }
  const std::string text = "Status(" + std::to_string(status->exception) + ", " +
                           NameOf(status->exception, kExceptionNames) + "): '" + detail +
                           status->message + "'";
  return strdup(text.c_str());
}

void AStatus_deleteDescription(const char* description) { free(const_cast<char*>(description)); }

void AStatus_delete(AStatus* status) {
  if (status != kOk) {
    delete status;
  }
}

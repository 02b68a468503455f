// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <sstream>

#include <android/binder_auto_utils.h>
#include <utils/Errors.h>

#include "support/log_recorder.h"

namespace {

using fp_test::TakeLog;
using ndk::ScopedAStatus;

// Callers of the library get these values as the platform's status codes.
constexpr bool IsSame(binder_status_t status, android::status_t other) { return status == other; }
static_assert(IsSame(STATUS_UNKNOWN_ERROR, android::UNKNOWN_ERROR));
static_assert(IsSame(STATUS_FAILED_TRANSACTION, android::FAILED_TRANSACTION));
static_assert(IsSame(STATUS_UNEXPECTED_NULL, android::UNEXPECTED_NULL));
static_assert(IsSame(STATUS_DEAD_OBJECT, android::DEAD_OBJECT));
static_assert(IsSame(STATUS_INVALID_OPERATION, android::INVALID_OPERATION));
static_assert(IsSame(STATUS_NAME_NOT_FOUND, android::NAME_NOT_FOUND));

struct Case {
  ScopedAStatus (*make)();
  binder_exception_t exception;
  int32_t service_specific;
  binder_status_t status;
  const char* message;
  const char* description;
};

const Case kCases[] = {
    {[] { return ScopedAStatus::ok(); }, EX_NONE, 0, STATUS_OK, "", "No error"},
    {[] { return ScopedAStatus::fromStatus(STATUS_OK); }, EX_NONE, 0, STATUS_OK, "", "No error"},
    {[] { return ScopedAStatus::fromExceptionCode(EX_NONE); }, EX_NONE, 0, STATUS_OK, "",
     "No error"},
    {[] { return ScopedAStatus::fromExceptionCode(EX_SECURITY); }, EX_SECURITY, 0, STATUS_OK, "",
     "Status(-1, EX_SECURITY): ''"},
    {[] { return ScopedAStatus::fromExceptionCodeWithMessage(EX_ILLEGAL_STATE, "not ready"); },
     EX_ILLEGAL_STATE, 0, STATUS_OK, "not ready", "Status(-5, EX_ILLEGAL_STATE): 'not ready'"},
    {[] { return ScopedAStatus::fromExceptionCode(EX_TRANSACTION_FAILED); }, EX_TRANSACTION_FAILED,
     0, STATUS_FAILED_TRANSACTION, "",
     "Status(-129, EX_TRANSACTION_FAILED): 'FAILED_TRANSACTION: '"},
    {[] { return ScopedAStatus::fromServiceSpecificError(7); }, EX_SERVICE_SPECIFIC, 7, STATUS_OK,
     "", "Status(-8, EX_SERVICE_SPECIFIC): '7: '"},
    {[] { return ScopedAStatus::fromServiceSpecificErrorWithMessage(5, "boom"); },
     EX_SERVICE_SPECIFIC, 5, STATUS_OK, "boom", "Status(-8, EX_SERVICE_SPECIFIC): '5: boom'"},
    {[] { return ScopedAStatus::fromStatus(STATUS_DEAD_OBJECT); }, EX_TRANSACTION_FAILED, 0,
     STATUS_DEAD_OBJECT, "", "Status(-129, EX_TRANSACTION_FAILED): 'DEAD_OBJECT: '"},
    // Values that nobody has defined.
    {[] { return ScopedAStatus::fromStatus(-4711); }, EX_TRANSACTION_FAILED, 0,
     STATUS_UNKNOWN_ERROR, "", "Status(-129, EX_TRANSACTION_FAILED): 'UNKNOWN_ERROR: '"},
    {[] { return ScopedAStatus::fromExceptionCode(-77); }, EX_TRANSACTION_FAILED, 0,
     STATUS_FAILED_TRANSACTION, "", "Status(-129, EX_TRANSACTION_FAILED): 'FAILED_TRANSACTION: '"},
};

TEST(BinderStatus, TellsWhatItWasMadeOf) {
  for (const Case& test : kCases) {
    const ScopedAStatus status = test.make();
    EXPECT_EQ(test.exception == EX_NONE, status.isOk()) << test.description;
    EXPECT_EQ(test.exception, status.getExceptionCode()) << test.description;
    EXPECT_EQ(test.service_specific, status.getServiceSpecificError()) << test.description;
    EXPECT_EQ(test.status, status.getStatus()) << test.description;
    EXPECT_STREQ(test.message, status.getMessage()) << test.description;
    EXPECT_EQ(test.description, status.getDescription());
    EXPECT_EQ(test.description, (std::ostringstream() << status).str());
  }
  const auto log = TakeLog();
  EXPECT_EQ(2u, log.size()) << "one warning per value that nobody has defined";
}

TEST(BinderStatus, IsOwnedByOne) {
  static_assert(!std::is_copy_constructible_v<ScopedAStatus>);
  static_assert(std::is_nothrow_move_constructible_v<ScopedAStatus>);
  EXPECT_FALSE(ScopedAStatus().isOk()) << "no status is not ok";
  EXPECT_EQ(AStatus_newOk(), AStatus_newOk()) << "one for the process";
  AStatus_delete(AStatus_newOk());
  EXPECT_TRUE(AStatus_isOk(AStatus_newOk()));
  AStatus_delete(nullptr);

  ScopedAStatus first = ScopedAStatus::fromServiceSpecificErrorWithMessage(1, "first");
  ScopedAStatus second = std::move(first);
  EXPECT_EQ(nullptr, first.get());
  EXPECT_STREQ("first", second.getMessage());
  second.set(AStatus_fromStatus(STATUS_TIMED_OUT));
  EXPECT_EQ(STATUS_TIMED_OUT, second.getStatus());
  AStatus_delete(second.release());
  EXPECT_EQ(nullptr, second.get());
}

}  // namespace

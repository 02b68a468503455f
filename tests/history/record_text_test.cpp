// SPDX-License-Identifier: Apache-2.0
//
// The library's own writer and reader of record texts against printf, scanf and regular
// expressions.
#include <gtest/gtest.h>

#include <string>

#include "fp_utils/auth_event.h"
#include "fp_utils/enroll_event.h"
#include "fp_utils/finger_sizes.h"
#include "reference/plain_auth_event.h"
#include "reference/plain_enroll_event.h"
#include "support/device_test.h"
#include "support/record_mutator.h"

namespace android::fp_utils {
namespace {

using fp_test::RecordMutator;

uint32_t Bits(float value) { return __builtin_bit_cast(uint32_t, value); }

auto Fields(const AuthEventG7& e) {
  return std::tuple(e.timestamp, e.acquired_info, e.auth_successful, e.fid, e.latency, e.iq,
                    Bits(e.t_cov), Bits(e.t_dist), e.lptw, e.rc, e.rawmean_delta, e.packed_metric_1,
                    e.packed_metric_2, e.packed_metric_3, e.extra_metric, e.foreign_matter_count,
                    e.match_score, e.stitch_img_num_, e.stitch_img_area_);
}

auto Fields(const EnrollEventG7& e) {
  return std::tuple(e.timestamp, e.op, e.enroll_successful, e.gid, e.fid, e.capture_count,
                    Bits(e.iq_avg), e.enrolled_fingers_count, e.rc, Bits(e.rawmean_delta),
                    e.stitch_img_num_, e.stitch_img_area_);
}

std::regex PatternOf(const AuthEvent& /*record*/) { return fp_reference::AuthEventPattern(); }
std::regex PatternOf(const EnrollEvent& /*record*/) { return fp_reference::EnrollEventPattern(); }

template <typename Record>
class RecordText : public ::testing::Test {};
using RecordTypes = ::testing::Types<AuthEventG7, EnrollEventG7>;
TYPED_TEST_SUITE(RecordText, RecordTypes);

TYPED_TEST(RecordText, WritesWhatPrintfWrites) {
  RecordMutator random(7);
  for (int i = 0; i < fp_test::Share(1000000); ++i) {
    const auto event = random.Make<TypeParam>();
    ASSERT_EQ(fp_reference::PlainBackupString(event), event.ToBackupString());
  }
}

TYPED_TEST(RecordText, ReadsWhatScanAndPatternRead) {
  const std::regex pattern = PatternOf(TypeParam());
  fp_test::MuteLog(true);
  RecordMutator random(8);
  int accepted = 0;
  const int texts = fp_test::Share(1000000);
  for (int i = 0; i < texts; ++i) {
    const std::string text = random.Text<TypeParam>();
    auto plain = random.Make<TypeParam>();
    TypeParam ours = plain;
    std::string plain_rest = text;
    std::string our_rest = text;
    const bool valid = fp_reference::PlainLoad(plain, plain_rest, pattern);
    accepted += valid ? 1 : 0;
    ASSERT_EQ(valid, ours.LoadFromBackupString(our_rest)) << text;
    ASSERT_EQ(plain_rest, our_rest) << text;
    ASSERT_EQ(Fields(plain), Fields(ours)) << text;
  }
  EXPECT_GT(accepted, texts / 5) << "too few valid texts to mean much";
  EXPECT_LT(accepted, texts * 4 / 5) << "too few damaged texts to mean much";
}

// Half-way cases of the second decimal, which printf rounds to even, and both zeros.
TEST(RecordNumbers, AreRoundedAsPrintfDoes) {
  AuthEventG7 event;
  FingerSize size;
  for (int32_t eighths = -80000; eighths <= 80000; ++eighths) {
    event.t_cov = static_cast<float>(eighths) / 8;
    event.t_dist = -event.t_cov / 25;
    ASSERT_EQ(fp_reference::PlainBackupString(event), event.ToBackupString());
    size = FingerSize(eighths, event.t_cov / 2, event.t_dist);
    char text[128];
    snprintf(text, sizeof text, "%d,%.1f,%.1f", size.op, size.major, size.minor);
    ASSERT_EQ(text, size.ToBackupString());
  }
}

// Every number with two decimals that the fast reader takes, near the powers of two where floats
// are sparse.
TEST(RecordNumbers, AreReadAsScanfDoes) {
  const std::regex pattern = fp_reference::AuthEventPattern();
  const std::string tail = ",1,0x0" + std::string(",0x0,0x0,0x0,0x0,0x0,0x0,0x0") +
                           ",0x0,0x0,0x0,0x0,0x0,0x0,0x0,0x0,0x0,0x0";
  for (int exponent = 0; exponent <= 23; ++exponent) {
    for (int hundredths = -150; hundredths <= 150; ++hundredths) {
      const long value = (1L << exponent) * 100 + hundredths;
      char number[64];
      snprintf(number, sizeof number, ",%s%ld.%02ld", hundredths % 2 == 0 ? "" : "-",
               std::abs(value) / 100, std::abs(value) % 100);
      std::string plain_text = "0x1,0x1,0x1,0x1,0x1,0x1" + std::string(number) + number + tail;
      std::string our_text = plain_text;
      AuthEventG7 plain;
      AuthEventG7 ours;
      ASSERT_TRUE(fp_reference::PlainLoad(plain, plain_text, pattern)) << number;
      ASSERT_TRUE(ours.LoadFromBackupString(our_text));
      ASSERT_EQ(Fields(plain), Fields(ours)) << number;
    }
  }
}

// A text far longer than any record, as a damaged caller might pass it: no recursion, no overflow.
TEST(RecordNumbers, MayComeInAMegabyteOfAnything) {
  fp_test::MuteLog(true);
  for (const char* piece : {"0x1,", "1", "0x", ",", "0x1,0x1,0x1,0x1,0x1,", "f", " "}) {
    std::string text = "0x1,0x1,0x1,0x1,0x1,0x1";
    while (text.size() < 1 << 20) {
      text += piece;
    }
    AuthEventG7 event;
    EXPECT_FALSE(event.LoadFromBackupString(text)) << piece;
    EnrollEventG7 enrollment;
    EXPECT_FALSE(enrollment.LoadFromBackupString(text)) << piece;
  }
}

}  // namespace
}  // namespace android::fp_utils

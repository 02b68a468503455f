// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/finger_sizes.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "fp_host/testing.h"

namespace android::fp_utils {
namespace {

using fp_host::Error;
using fp_host::TakeLog;

constexpr char kFile[] = "/data/vendor/fingerprint/FingerSizes.x";

std::shared_ptr<FingerSize> Size(int32_t op, float major, float minor = 0) {
  return std::make_shared<FingerSize>(op, major, minor);
}

class FingerSizesTest : public fp_host::DeviceTest {};

TEST_F(FingerSizesTest, TextsHaveOneDecimal) {
  EXPECT_EQ("0,0.0,0.0", FingerSize().ToBackupString());
  FingerSize size(2, 12.34F, -0.04F);
  EXPECT_EQ("op:2, size:(12.3, -0.0)", size.ToString());
  EXPECT_EQ("2,12.3,-0.0", size.ToBackupString());
  std::string text = "-7, 1.25 ,3";
  errno = 0;
  EXPECT_FALSE(size.LoadFromBackupString(text));
  EXPECT_EQ(1.25F, size.major) << "scanned straight into the sample";
  EXPECT_EQ(2, size.op);
  EXPECT_LOG(Error("FingerSizes",
                   "[virtual bool android::fp_utils::FingerSize::LoadFromBackupString("
                   "std::string &)] failed to parse str:'-7, 1.25 ,3' with error 0"));
  text = "-7, 1.25,3e2 and more";
  EXPECT_TRUE(size.LoadFromBackupString(text));
  EXPECT_EQ("-7, 1.25,3e2 and more", text) << "the text is left alone";
  EXPECT_EQ(-7, size.op);
  EXPECT_EQ(300.0F, size.minor);
}

TEST_F(FingerSizesTest, CountsByOperation) {
  FingerSizes sizes("x", 4, false);
  for (const int32_t op : {1, 2, 0, 2, 2, 1}) {
    sizes.AddFinger(Size(op, static_cast<float>(op)), true);
  }
  EXPECT_EQ(4u, sizes.GetFingerCount());
  EXPECT_EQ(1u, sizes.GetOp1Count());
  EXPECT_EQ(2u, sizes.GetOp2Count());
  EXPECT_EQ(0, sizes.GetFingers().front()->op);
  EXPECT_FALSE(Exists(kFile));
  const auto oldest = sizes.GetFingers().front();
  EXPECT_EQ(oldest, sizes.PopFinger());
  sizes.PushFinger(oldest);

  sizes.Reset();
  EXPECT_EQ(0u, sizes.GetFingerCount());
  EXPECT_EQ(1u, sizes.GetOp1Count()) << "kept across a reset";
  EXPECT_EQ(2u, sizes.GetOp2Count());
  EXPECT_EQ(nullptr, sizes.PopFinger());

  FingerSizes none("x", 0, true);
  none.AddFinger(Size(1, 1), true);
  EXPECT_EQ(0u, none.GetFingerCount());
  EXPECT_EQ("", ReadFile(kFile));
}

TEST_F(FingerSizesTest, SavesOnlyWhenAskedAndNeverAfterAReset) {
  FingerSizes sizes("x", FingerSizes::kUnbounded, true);
  sizes.AddFinger(Size(1, 12.34F, 5), false);
  EXPECT_FALSE(Exists(kFile)) << "not asked to save";
  sizes.AddFinger(Size(2, 20, 8), true);
  FingerSizes again("x", 1, true);
  EXPECT_EQ(1u, again.GetFingerCount()) << "the capacity holds for loading";
  EXPECT_EQ(0u, again.GetOp1Count());
  EXPECT_EQ(1u, again.GetOp2Count());

  const std::string saved = ReadFile(kFile);
  sizes.Reset();
  sizes.AddFinger(Size(1, 1), true);
  EXPECT_EQ(saved, ReadFile(kFile)) << "never saves again";
}

TEST_F(FingerSizesTest, KnownPercentiles) {
  FingerSizes sizes("x", FingerSizes::kUnbounded, false);
  EXPECT_EQ(0.0F, sizes.GetPercentileValue(FingerSize::kMajor, 50));
  sizes.AddFinger(Size(1, 4, 20), false);
  EXPECT_EQ(4.0F, sizes.GetPercentileValue(FingerSize::kMajor, 77));
  sizes.AddFinger(Size(1, 1, 10), false);
  EXPECT_EQ(12.5F, sizes.GetPercentileValue(FingerSize::kMinor, 25));
  EXPECT_EQ(12.5F, sizes.GetPercentileValue(static_cast<FingerSize::Axis>(7), 25));
  sizes.AddFinger(Size(1, 3), false);
  sizes.AddFinger(Size(1, 2), false);
  EXPECT_EQ(2.5F, sizes.GetPercentileValue(FingerSize::kMajor, 50));
  EXPECT_EQ(1.0F, sizes.GetPercentileValue(FingerSize::kMajor, 0));
  EXPECT_EQ(4.0F, sizes.GetPercentileValue(FingerSize::kMajor, 100));
  EXPECT_EQ(4.0F, sizes.GetFingers().front()->major) << "the history stays in its order";
}

// The result for a percentile outside 0 to 100 is unspecified, but the call must be safe.
TEST_F(FingerSizesTest, OddPercentilesAndSizesDoNoHarm) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
  FingerSizes sizes("x", FingerSizes::kUnbounded, false);
  for (const float size : {3.0F, kNan, -kInfinity, kInfinity, -kNan, 1.0F, 2.0F}) {
    sizes.AddFinger(Size(1, size), false);
  }
  for (const float percentile : {-1.0F, -1e30F, 101.0F, 1e30F, kInfinity, -kInfinity, kNan}) {
    sizes.GetPercentileValue(FingerSize::kMajor, percentile);
  }
  EXPECT_EQ(2.0F, sizes.GetPercentileValue(FingerSize::kMajor, 50)) << "NaNs sort to the ends";
}

TEST_F(FingerSizesTest, PercentilesAreThoseOfTheSortedSizesToTheBit) {
  std::mt19937 random(6);
  for (int round = 0; round < fp_host::Share(2000); ++round) {
    FingerSizes sizes("x", FingerSizes::kUnbounded, false);
    std::vector<float> sorted;
    const size_t count = 2 + random() % (round % 10 == 0 ? 3000 : 60);
    for (size_t i = 0; i < count; ++i) {
      const float size = static_cast<float>(static_cast<int32_t>(random())) /
                         static_cast<float>(1 + random() % 100000);
      sizes.AddFinger(Size(1, round % 3 == 0 ? std::round(size) : size), false);
      sorted.push_back(sizes.GetFingers().back()->major);
    }
    std::sort(sorted.begin(), sorted.end());
    for (int i = 0; i < 20; ++i) {
      const float percentile = static_cast<float>(random() % 10001) / 100;
      const float position = percentile / 100.0F * static_cast<float>(count - 1);
      const auto index = static_cast<size_t>(position);
      const float low = sorted[index];
      const float high = sorted[std::min(index + 1, count - 1)];
      const float expected = low + (position - static_cast<float>(index)) * (high - low);
      const float actual = sizes.GetPercentileValue(FingerSize::kMajor, percentile);
      ASSERT_EQ(0, memcmp(&expected, &actual, sizeof expected))
          << count << " sizes, percentile " << percentile;
    }
  }
}

}  // namespace
}  // namespace android::fp_utils

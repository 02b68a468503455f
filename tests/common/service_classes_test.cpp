// SPDX-License-Identifier: Apache-2.0
//
// Classes that a service derives from those of the library. Services are built with or without
// RTTI, so this file is built both ways.
#include <memory>

#include "common/exact_class.h"
#include "fp_host/testing.h"
#include "fp_utils/auth_stats.h"
#include "fp_utils/enroll_event_container.h"
#include "fp_utils/finger_sizes.h"
#include "fp_utils/shapes.h"
#include "support/history_kinds.h"

#ifdef __GXX_RTTI
#define SERVICE_CLASSES ServiceClassesWithRtti
#else
#define SERVICE_CLASSES ServiceClassesWithoutRtti
#endif

namespace android::fp_utils {
namespace {

class SERVICE_CLASSES : public fp_host::DeviceTest {};

// Its text is longer than any of the library's.
template <typename Record>
struct Own : Record {
  std::string ToBackupString() const override { return "own" + std::string(3000, 'x'); }
};

std::string OwnFrame() { return fp_test::Frame(Own<FingerSize>().ToBackupString()); }

TEST_F(SERVICE_CLASSES, OfRecordsCountAndSaveTheirOwnText) {
  AuthStatsG7 stats("0", 2, true);
  stats.Init();
  fp_host::TakeLog();
  for (const int32_t rawmean_delta : {10, 20, 40}) {
    auto event = std::make_shared<Own<AuthEventG7>>();
    static_cast<AuthEventG7&>(*event) = *fp_test::Attempt(true, 0, rawmean_delta);
    stats.AddAttempt(event);
  }
  EXPECT_EQ(30.0F, stats.GetAvgRawmeanDelta());
  EXPECT_LOG();
  EXPECT_EQ(OwnFrame() + OwnFrame(), ReadFile(stats.GetBackupPath()));

  EnrollEventContainer container;
  container.Init("EnrollEventG7");
  auto base = std::make_shared<EnrollEvent>();
  base->timestamp = 0x10;
  container.AddEvent(base);
  container.AddEvent(std::make_shared<Own<EnrollEventG7>>());
  EXPECT_EQ(fp_test::Frame("0x10,0,0x0,0x0,0x0,0x0,0.00,0x0") + OwnFrame(),
            ReadFile(container.GetBackupPath()));

  FingerSizes sizes("x", 2, true);
  sizes.AddFinger(std::make_shared<Own<FingerSize>>(), true);
  EXPECT_EQ(OwnFrame(), ReadFile(sizes.GetBackupPath()));
}

class LeftHalf : public IShape {
 public:
  std::string Print() const override { return "LeftHalf"; }
  bool Contains(const Point& p) const override { return p.x < 5; }
};

struct WideCircle : Circle {
  using Circle::Circle;
  bool Contains(const Point& p) const override { return p.x < 5; }
};

TEST_F(SERVICE_CLASSES, OfShapesAreTestedAtEverySample) {
  const Rect ten({0, 0}, {9, 9});
  EXPECT_EQ(50.0F, ten.CoverageCoveredBy(LeftHalf()));
  EXPECT_EQ(50.0F, ten.CoverageCoveredBy(WideCircle()));
  EXPECT_EQ(20.0F, Circle({5, 5}, 1).CoverageCoveredBy(WideCircle()));
  const WideCircle wide({0, 0}, 4);
  EXPECT_EQ(25.0F, Circle({0, 0}, 8).CoverageCoveredBy(static_cast<const Circle&>(wide)))
      << "in closed form, its fields decide";
  EXPECT_EQ(1.0F, ten.CoverageCoveredBy(static_cast<const IShape&>(Circle({5, 5}, 0.5F))));
}

template <typename Known, typename Base>
void ExpectDistinguishedFromDerived() {
  struct Derived : Known {};
  const Known known;
  EXPECT_EQ(&known, (ExactCast<Known, Base>(known)));
  EXPECT_EQ(nullptr, (ExactCast<Known, Base>(Derived())));
}

TEST_F(SERVICE_CLASSES, AreDistinguishedFromTheLibrarys) {
  ExpectDistinguishedFromDerived<AuthEvent, AuthEvent>();
  ExpectDistinguishedFromDerived<AuthEventG7, AuthEvent>();
  ExpectDistinguishedFromDerived<EnrollEvent, EnrollEvent>();
  ExpectDistinguishedFromDerived<EnrollEventG7, EnrollEvent>();
  ExpectDistinguishedFromDerived<FingerSize, FingerSize>();
  ExpectDistinguishedFromDerived<Circle, IShape>();
  ExpectDistinguishedFromDerived<Ellipse, IShape>();
  ExpectDistinguishedFromDerived<Rect, IShape>();
  EXPECT_EQ(nullptr, (ExactCast<AuthEvent, AuthEvent>(AuthEventG7())));
}

}  // namespace
}  // namespace android::fp_utils

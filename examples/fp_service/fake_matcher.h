// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>

#include "random.h"
#include "scenario.h"
#include "sensor_model.h"

namespace fp_service {

// Stands in for the matcher of a real device. It knows which finger an image shows, and rejects it
// as often as a matcher would for the quality and the coverage of the image:
//
//   chance of a match = logistic(quality) * logistic(coverage), each with its midpoint and scale
//
// The library's records translate its result codes and metrics into a `reason:`.
class FakeMatcher {
 public:
  // The state that survives a restart of the service.
  struct Storage {
    explicit Storage(uint64_t seed) : random(seed) {}

    Random random;
    std::array<bool, kMaxFingers + 1> enrolled = {};  // by finger; [0] is never true
  };

  struct Result {
    int finger = 0;   // the finger that matched; 0: none
    uint32_t rc = 0;  // 0: matched
    int32_t latency_ms = 0;
    int32_t score = 0;
    std::array<int32_t, 3> packed_metrics = {};
    std::array<int32_t, 5> stitched_images = {};
    std::array<int32_t, 5> stitched_area = {};
  };

  struct Enrollment {
    int32_t rc = 0;  // 0: enrolled
    int32_t captures = 0;
    float average_quality = 0;
    float average_raw_mean = 0;
  };

  explicit FakeMatcher(Storage& storage) : storage_(storage) {}

  Result Match(const Capture& image, float coverage_percent);

  // Adds an image to the current enrollment.
  void AddImage(const Capture& image, float coverage_percent);
  // Enrolls `finger` with the images since the last enrollment, if they are good enough.
  Enrollment FinishEnrollment(int finger);
  void Delete(int finger) { EnrolledFlag(finger) = false; }

  bool IsEnrolled(int finger) const { return storage_.enrolled[static_cast<size_t>(finger)]; }
  int32_t CountEnrolled() const;

 private:
  bool& EnrolledFlag(int finger) { return storage_.enrolled[static_cast<size_t>(finger)]; }

  Storage& storage_;

  // Sums over the images of the current enrollment.
  int32_t captures_ = 0;
  float coverage_sum_ = 0;
  float quality_sum_ = 0;
  float raw_mean_sum_ = 0;
};

}  // namespace fp_service

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cmath>
#include <cstdint>

namespace android::fp_utils {

// The samples of one axis of the grid, taken in batches. They start at the low edge, and each is
// the one before plus the step. The sum accumulates in single precision, so the last sample equals
// the high edge up to rounding.
class SampleAxis {
 public:
  // `count` samples, each of which counts `weight` times.
  struct Batch {
    uint32_t count;
    uint32_t weight;
  };

  // For a count of 1 the step is infinite or NaN, and for 0 it has no meaning; no sample uses it.
  SampleAxis(float low, float high, uint32_t count)
      : next_(low), step_((high - low) / static_cast<float>(count - 1)), left_(count) {}

  uint32_t Left() const { return left_; }
  bool IsEmpty() const { return left_ == 0; }
  bool IsDescending() const { return step_ < 0; }

  // Writes the next samples to `out`, up to `capacity`; returns how many.
  uint32_t Take(float* out, uint32_t capacity) {
    const uint32_t count = left_ < capacity ? left_ : capacity;
    for (uint32_t i = 0; i < count; ++i) {
      out[i] = next_;
      next_ += step_;
    }
    left_ -= count;
    return count;
  }

  // Like Take(), but once a step no longer changes the value, all samples that are left come as one
  // with a weight. That happens with a step below half an ulp, at infinity and at NaN, and would
  // otherwise take up to four billion steps. The samples of a batch are sorted, and a NaN is always
  // the only sample of its batch.
  Batch TakeMerged(float* out, uint32_t capacity) {
    if (next_ + step_ == next_ || std::isnan(next_)) {
      *out = next_;
      const uint32_t weight = left_;
      left_ = 0;
      return {1, weight};
    }
    return {Take(out, std::isfinite(step_) ? capacity : 1), 1};
  }

 private:
  float next_;
  float step_;
  uint32_t left_;
};

}  // namespace android::fp_utils

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cmath>
#include <cstdint>

namespace android::fp_utils {

// The samples of one axis of the grid, handed out in batches: the low edge, then one step on at a
// time. The steps accumulate in single precision, so the last sample meets the high edge up to
// rounding.
class SampleAxis {
 public:
  // A number of samples that all have the same effect `weight` times.
  struct Batch {
    uint32_t count;
    uint32_t weight;
  };

  // A count of 1 divides by zero, and one of 0 by 4294967295: no step is taken then.
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

  // Likewise, but all the samples from which no step leads away any more come as one: a step below
  // half an ulp, infinity and NaN would otherwise be walked four billion times. Samples of a batch
  // are in order, and either none of them is NaN or it is alone.
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

// SPDX-License-Identifier: Apache-2.0
//
// Dumps the histories after arbitrary operations. Each byte is an operation, and the bytes after it
// are its arguments.
#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <memory>

#include "fp_utils/auth_stats.h"
#include "fp_utils/critical_errors.h"
#include "fp_utils/enroll_event_container.h"
#include "fp_utils/finger_sizes.h"
#include "fp_utils/fps_init_info.h"
#include "fuzzed_device.h"

using namespace android::fp_utils;

namespace {

class Input {
 public:
  Input(const uint8_t* data, size_t size) : data_(data), left_(size) {}

  bool IsEmpty() const { return left_ == 0; }

  template <typename Value>
  Value Take() {
    Value value = {};
    const size_t bytes = std::min(left_, sizeof value);
    memcpy(&value, data_, bytes);
    data_ += bytes;
    left_ -= bytes;
    return value;
  }

  template <typename Values>
  void Fill(Values& values) {
    for (auto& value : values) {
      value = Take<std::remove_reference_t<decltype(value)>>();
    }
  }

 private:
  const uint8_t* data_;
  size_t left_;
};

// The objects of one service.
class Service {
 public:
  explicit Service(Input& input) : input_(input), sizes_("fuzz", input.Take<uint8_t>(), false) {
    stats_.Init();
  }

  void Operate() {
    switch (input_.Take<uint8_t>() % 8) {
      case 0:
        return AddAttempt();
      case 1:
        return AddEnrollment();
      case 2:
        return AddFinger();
      case 3:
        return stats_.Reset();
      case 4:
        return sizes_.Reset();
      case 5:
        return CriticalErrors::GetInstance().AddErrorEvent(
            std::make_shared<ErrorEvent>(std::string(input_.Take<uint16_t>() % 2000, 'x')));
      case 6:
        return init_.SetState(static_cast<FpsInitInfo::State>(input_.Take<int32_t>()));
      default:
        return Dump();
    }
  }

  void Dump() {
    static const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
    stats_.Dump(null, nullptr, 0);
    enrollments_.Dump(null, nullptr, 0);
    CriticalErrors::GetInstance().Dump(null, nullptr, 0);
    init_.Dump(null);
    sizes_.GetPercentileValue(static_cast<FingerSize::Axis>(input_.Take<int32_t>()),
                              input_.Take<float>());
  }

 private:
  void AddAttempt() {
    auto event = std::make_shared<AuthEventG7>();
    event->timestamp = input_.Take<time_t>();
    event->acquired_info = input_.Take<int8_t>();
    event->auth_successful = input_.Take<uint8_t>() % 2 == 0;
    event->fid = input_.Take<int32_t>();
    event->iq = input_.Take<int32_t>();
    event->t_cov = input_.Take<float>();
    event->t_dist = input_.Take<float>();
    event->rc = input_.Take<uint32_t>();
    event->rawmean_delta = input_.Take<int32_t>();
    event->packed_metric_1 = input_.Take<int32_t>();
    event->packed_metric_2 = input_.Take<int32_t>();
    event->packed_metric_3 = input_.Take<int32_t>();
    input_.Fill(event->stitch_img_area_);
    stats_.AddAttempt(event);
  }

  void AddEnrollment() {
    auto event = std::make_shared<EnrollEventG7>();
    event->timestamp = input_.Take<time_t>();
    event->op = input_.Take<uint32_t>();
    event->iq_avg = input_.Take<float>();
    event->rc = input_.Take<int32_t>();
    event->rawmean_delta = input_.Take<float>();
    input_.Fill(event->stitch_img_num_);
    enrollments_.AddEvent(event);
  }

  void AddFinger() {
    auto size = std::make_shared<FingerSize>();
    size->op = input_.Take<int32_t>();
    size->major = input_.Take<float>();
    size->minor = input_.Take<float>();
    sizes_.AddFinger(size, false);
  }

  Input& input_;
  AuthStatsG7 stats_{"fuzz", 7, false};
  EnrollEventContainer enrollments_;
  FingerSizes sizes_;
  FpsInitInfo init_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fp_fuzz::BootInMemory();
  Input input(data, size);
  Service service(input);
  while (!input.IsEmpty()) {
    service.Operate();
  }
  service.Dump();
  return 0;
}

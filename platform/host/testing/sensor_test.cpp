// SPDX-License-Identifier: Apache-2.0
#include "fp_host/testing.h"

namespace fp_host {

SensorTest::~SensorTest() {
  RecordSensorCalls(false);
  ClearSensorFaults();
  StartSensorService();
}

void SensorTest::TakeCalls() {
  mine_.clear();
  others_.clear();
  for (const SensorCall& call : TakeSensorCalls()) {
    Texts& texts = call.thread == std::this_thread::get_id() ? mine_ : others_;
    const bool repeated_wake =
        call.text.starts_with("ALooper_wake") && !texts.empty() && texts.back() == call.text;
    if (!repeated_wake) {
      texts.push_back(call.text);
    }
  }
}

SensorTest::Texts SensorTest::MyCalls() {
  TakeCalls();
  return mine_;
}

}  // namespace fp_host

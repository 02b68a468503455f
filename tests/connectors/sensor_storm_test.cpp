// SPDX-License-Identifier: Apache-2.0
//
// The clients of the sensor service on many threads at once.
#include <algorithm>
#include <thread>
#include <vector>

#include "support/listener_test.h"

namespace android::fp_utils {
namespace {

using namespace fp_host;
using namespace fp_test;

// All threads of a service at once, with callbacks that call the listener. The system server
// restarts at any time, so dead handles may be used and must not abort.
class SensorStorm : public ListenerTest {
 protected:
  SensorStorm() {
    RecordSensorCalls(false);
    AllowDeadHandleUses();
    MuteLog(true);
    on_light_ = [this] { CallBack(static_cast<int>(last_lux_)); };
  }

  void Run(int rounds) {
    std::vector<std::thread> threads;
    for (const auto step :
         {&SensorStorm::Sample, &SensorStorm::Read, &SensorStorm::Report, &SensorStorm::Restart}) {
      threads.emplace_back([this, rounds, step] {
        for (int i = 1; i <= rounds; ++i) {
          (this->*step)(i);
        }
      });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
    listener_->OnSystemServerDeath();
  }

 private:
  void CallBack(int event) {
    if (event % 8 == 0) {
      listener_->StopSampling(kLongPress);
      listener_->StartSampling(kLongPress);
    }
    if (event % 64 == 0) {
      listener_->OnSystemServerDeath();
    }
  }

  void Sample(int i) {
    const auto type = i % 3 == 0 ? kLongPress : kLight;
    i % 4 == 0 ? listener_->StopSampling(type) : listener_->StartSampling(type);
  }

  void Read(int i) {
    AlsMonitor* const monitor = AlsMonitor::GetInstance();
    if (i % 16 == 1) {
      monitor->StartSampling();
    }
    float lux = 0;
    monitor->GetLight(&lux);
    if (i % 64 == 0) {
      monitor->StopSampling();
    }
  }

  void Report(int i) {
    ReportLux(std::vector<float>(static_cast<size_t>(1 + i % 20), static_cast<float>(i)));
    ReportLongPress();
  }

  void Restart(int i) {
    if (i % 8 == 0) {
      RestartSensorService();
      AlsMonitor::OnSystemServerDeath();
    }
    listener_->OnSystemServerDeath();
  }
};

TEST_F(SensorStorm, AllThreadsAtOnceFinish) {
  RunBounded("storm", [this] { Run(std::max(100, Share(1000))); });
  RestartSensorService();
  AlsMonitor::OnSystemServerDeath();
  ExpectRecovery();
}

}  // namespace
}  // namespace android::fp_utils

// SPDX-License-Identifier: Apache-2.0
//
// The clients of the sensor service on many threads at once.
#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

#include "fp_host/testing.h"
#include "support/sensor_clients.h"

namespace android::fp_utils {
namespace {

using namespace fp_host;
using namespace fp_test;

// All threads of a service at once, with callbacks that call the listener. The system server
// restarts at any time, so dead handles may be used and must not abort.
class Storm {
 public:
  explicit Storm(int rounds) : rounds_(rounds) {
    listener_.light_sensor_callback_ = [this](const ASensorEvent& event) {
      CallBack(static_cast<int>(event.light));
    };
  }

  void Run() {
    std::vector<std::thread> threads;
    for (const auto step : {&Storm::Sample, &Storm::Read, &Storm::Report, &Storm::Restart}) {
      threads.emplace_back([this, step] {
        for (int i = 1; i <= rounds_; ++i) {
          (this->*step)(i);
        }
      });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
    listener_.OnSystemServerDeath();
  }

 private:
  void CallBack(int event) {
    if (event % 8 == 0) {
      listener_.StopSampling(kLongPress);
      listener_.StartSampling(kLongPress);
    }
    if (event % 64 == 0) {
      listener_.OnSystemServerDeath();
    }
  }

  void Sample(int i) {
    const auto type = i % 3 == 0 ? kLongPress : kLight;
    i % 4 == 0 ? listener_.StopSampling(type) : listener_.StartSampling(type);
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
    listener_.OnSystemServerDeath();
  }

  const int rounds_;
  SensorListener listener_;
};

TEST(SensorStorm, AllThreadsAtOnceFinish) {
  AllowDeadHandleUses();
  MuteLog(true);
  RunBounded("storm", [] { Storm(std::max(100, Share(1000))).Run(); });
  ClearSensorFaults();
  RestartSensorService();
  AlsMonitor::OnSystemServerDeath();
  SensorClients().ExpectRecovery();
}

// Workers start and stop while another thread polls the looper and takes their wakes.
TEST(SensorStorm, WorkersEndBesideAGreedyPoller) {
  std::atomic<bool> over = false;
  std::thread greedy([&over] {
    while (!over) {
      ALooper_pollOnce(1, nullptr, nullptr, nullptr);
    }
  });
  RunBounded("workers beside a greedy poller", [] {
    for (int i = 0; i < 200; ++i) {
      SensorListener listener;
      EXPECT_EQ(0, listener.StartSampling(kLight));
      listener.OnSystemServerDeath();
      EXPECT_EQ(0, listener.StartSampling(kLongPress));
    }
  });
  over = true;
  greedy.join();
}

}  // namespace
}  // namespace android::fp_utils

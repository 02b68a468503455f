// SPDX-License-Identifier: Apache-2.0
//
// All subsystems together, as a service uses them, for a long time and with everything around them
// failing now and then.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <fstream>
#include <functional>
#include <iostream>
#include <random>
#include <thread>

#include "control/faults.h"
#include "control/sensor_service.h"
#include "phone.h"
#include "service.h"
#include "support/device_test.h"
#include "support/holdings.h"

namespace fp_service {
namespace {

// What a process must not collect.
struct Holdings {
  long descriptors;
  long threads;
  long kilobytes;

  static Holdings Now() {
    long pages = 0;
    std::ifstream("/proc/self/statm").ignore(64, ' ') >> pages;
    return {.descriptors = fp_test::CountDescriptors(),
            .threads = fp_test::CountThreads(),
            .kilobytes = pages * (sysconf(_SC_PAGESIZE) / 1024)};
  }
};

std::ostream& operator<<(std::ostream& out, const Holdings& holdings) {
  return out << holdings.descriptors << " descriptors, " << holdings.threads << " threads, "
             << holdings.kilobytes << " KB";
}

constexpr int kManyAttempts = 100000;

class Soak : public fp_test::DeviceTest {
 protected:
  Soak() { fp_test::MuteLog(true); }

  void Run(uint64_t seed, int attempts) {
    std::cout << "random numbers from " << seed << std::endl;
    random_.seed(seed);
    service_.Calibrate({.expo_ms = 60, .base = 300});
    Enroll();
    std::atomic<bool> done = false;
    const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
    std::thread triager([&] {
      while (!done) {
        service_.DumpWhileBusy(null);
        std::this_thread::yield();
      }
    });
    Holdings warm = {};
    for (int i = 0; i < attempts; ++i) {
      Attempt(i);
      if (i == attempts / 5) {
        warm = Holdings::Now();
      }
    }
    const Holdings end = Holdings::Now();
    done = true;
    triager.join();
    close(null);
    std::cout << "after a fifth: " << warm << "\nat the end:    " << end << '\n'
              << matches_ << " of " << attempts << " attempts matched" << std::endl;
    EXPECT_EQ(warm.descriptors, end.descriptors);
    EXPECT_EQ(warm.threads, end.threads);
    // A short run is still warming up. The queues of a sensor service that has died are abandoned,
    // as the platform has it.
    if (attempts >= kManyAttempts) {
      EXPECT_LE(end.kilobytes, warm.kilobytes + warm.kilobytes / 20 + 4 * restarts_);
    }
    EXPECT_GT(matches_, attempts / 4) << "it goes on working";
    ExpectHistoryFoundAgain(attempts);
  }

 private:
  int Below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

  void Touch(Purpose purpose, Skin skin, Aim aim, const std::function<void()>& work) {
    service_.ExpectFinger(purpose);
    phone_.PutFinger(skin, aim);
    work();
    phone_.LiftFinger();
    phone_.RestartDeadHals();
    service_.FinishTouch();
  }

  void Enroll() {
    for (int i = 0; i < 10; ++i) {
      Touch(Purpose::kEnroll, Skin::kNormal, Aim::kGood, [&] { service_.CaptureForEnrollment(); });
    }
    service_.Enroll(0, 1);
  }

  void Attempt(int i) {
    if (Below(20) == 0) {
      PullALever();
    }
    const Aim aim = Below(4) == 0 ? Aim::kPoor : Aim::kGood;
    Touch(Purpose::kAuthenticate, static_cast<Skin>(Below(3)), aim, [&] {
      const auto outcome = service_.Authenticate(i, 1);
      matches_ += outcome.event->auth_successful ? 1 : 0;
    });
    if (!service_.IsEnrolled(1)) {
      Enroll();
    }
  }

  void FailSoon(const char* function, int error) {
    fp_host::SetFault(
        {.function = function, .first_call = 1 + Below(3), .calls = 1 + Below(2), .error = error});
  }

  void PullALever() {
    fp_host::ClearFaults();
    switch (Below(14)) {
      case 0:
        return FailSoon("open", EACCES);
      case 1:
        return FailSoon("fopen", EMFILE);
      case 2:
        return FailSoon("write", ENOSPC);
      case 3:
        return fp_host::SetFault({.function = "write", .calls = 2, .shorten_to = Below(40)});
      case 4:
        return FailSoon("read", EINTR);
      case 5:
        return FailSoon("poll", EINTR);
      case 6:
        return FailSoon("ioctl", EIO);
      case 7:
        return phone_.LetDisplayHalDie();
      case 8:
        return phone_.SetLux(static_cast<float>(Below(40000)));
      case 9:
        return phone_.SetSkinSeverity(Below(7));
      case 10:
        return phone_.LongPress(1 + Below(20));
      case 11:
        return phone_.BlinkTouchDevice();
      case 12:
        ++restarts_;
        fp_host::RestartSensorService();
        return service_.SystemServerDied();
      default:
        service_.Delete(0, 1);
    }
  }

  void ExpectHistoryFoundAgain(int attempts) {
    fp_host::ClearFaults();
    Touch(Purpose::kAuthenticate, Skin::kNormal, Aim::kGood, [&] { service_.Authenticate(0, 1); });
    android::fp_utils::AuthStatsG7 found("0", 100, true);
    found.Init();
    EXPECT_LE(std::min(attempts / 2, 90), static_cast<int>(found.GetTotalAttempts()));
  }

  std::mt19937_64 random_;
  Phone phone_{device_.GetRoot(), 1};
  Service service_{phone_};
  int matches_ = 0;
  long restarts_ = 0;
};

TEST_F(Soak, WorksWhileEverythingFailsNowAndThen) { Run(20260304, fp_test::Share(3000)); }

class LongSoak : public Soak {};

TEST_F(LongSoak, HoldsNoMoreAfterHundredThousandAttempts) {
  Run(std::random_device()(), kManyAttempts);
}

}  // namespace
}  // namespace fp_service

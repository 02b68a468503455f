// SPDX-License-Identifier: Apache-2.0
//
// A service uses all subsystems for a long time, while the platform fails at random.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <functional>
#include <random>
#include <thread>

#include "fp_host/faults.h"
#include "fp_host/sensor_service.h"
#include "fp_host/testing.h"
#include "phone.h"
#include "player.h"
#include "service.h"

namespace fp_service {
namespace {

// What a leak would let grow.
struct Resources {
  long descriptors = fp_host::CountDescriptors();
  long threads = fp_host::CountThreads();
  long kilobytes = CountKilobytes();

  static long CountKilobytes() {
    long pages = 0;
    std::ifstream("/proc/self/statm").ignore(64, ' ') >> pages;
    return pages * (sysconf(_SC_PAGESIZE) / 1024);
  }
};

constexpr int kManyAttempts = 100000;

class Soak : public fp_host::DeviceTest {
 protected:
  Soak() { fp_host::MuteLog(true); }

  void Run(uint64_t seed, int attempts) {
    printf("random numbers from %lu\n", seed);
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
    Resources warm;
    for (int i = 0; i < attempts; ++i) {
      Attempt();
      if (i == attempts / 5) {
        warm = {};
      }
    }
    const Resources end;
    done = true;
    triager.join();
    close(null);
    const int matches = report_.GetPhase().attempts - report_.GetPhase().rejects;
    printf("%ld KB after a fifth, %ld KB at the end; %d of %d attempts matched\n", warm.kilobytes,
           end.kilobytes, matches, attempts);
    EXPECT_EQ(warm.descriptors, end.descriptors);
    EXPECT_EQ(warm.threads, end.threads);
    // In a short run memory still grows to its steady size. The stand-in never frees the queues of
    // a dead sensor service: 4 KB for each restart.
    if (attempts >= kManyAttempts) {
      EXPECT_LE(end.kilobytes, warm.kilobytes + warm.kilobytes / 20 + 4 * restarts_);
    }
    EXPECT_GT(matches, attempts / 4) << "it keeps working";

    fp_host::ClearFaults();
    Touch(Skin::kNormal, Placement::kGood);
    android::fp_utils::AuthStatsG7 found("0", 100, true);
    found.Init();
    EXPECT_LE(std::min(attempts / 2, 90), static_cast<int>(found.GetTotalAttempts()));
  }

 private:
  int RandomInt(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

  void Enroll() { player_.Play({0, fp_service::Enroll{1, 10, Placement::kGood}}); }
  void Touch(Skin skin, Placement placement) {
    player_.Play(
        {0, Attempts{.finger = 1, .count = 1, .every_s = 0, .skin = skin, .placement = placement}});
  }

  void Attempt() {
    if (RandomInt(20) == 0) {
      CauseTrouble();
    }
    Touch(static_cast<Skin>(RandomInt(3)), RandomInt(4) == 0 ? Placement::kPoor : Placement::kGood);
    if (!service_.IsEnrolled(1)) {
      Enroll();
    }
  }

  void FailSoon(const char* function, int error) {
    fp_host::SetFault({.function = function,
                       .first_call = 1 + RandomInt(3),
                       .calls = 1 + RandomInt(2),
                       .error = error});
  }

  void CauseTrouble() {
    const std::function<void()> troubles[] = {
        [&] { FailSoon("open", EACCES); },
        [&] { FailSoon("fopen", EMFILE); },
        [&] { FailSoon("write", ENOSPC); },
        [&] { fp_host::SetFault({.function = "write", .calls = 2, .shorten_to = RandomInt(40)}); },
        [&] { FailSoon("read", EINTR); },
        [&] { FailSoon("poll", EINTR); },
        [&] { FailSoon("ioctl", EIO); },
        [&] { phone_.CrashDisplayHalAtNextCall(); },
        [&] { phone_.SetLux(static_cast<float>(RandomInt(40000))); },
        [&] { phone_.SetSkinSeverity(RandomInt(7)); },
        [&] { phone_.LongPress(1 + RandomInt(20)); },
        [&] { phone_.ReconnectTouchDevice(); },
        [&] {
          ++restarts_;
          fp_host::RestartSensorService();
          service_.SystemServerDied();
        },
        [&] { service_.Delete(1); }};
    fp_host::ClearFaults();
    troubles[RandomInt(std::size(troubles))]();
  }

  std::mt19937_64 random_;
  PhoneState state_{1};
  Phone phone_{device_.GetRoot(), state_};
  Service service_{phone_};
  Report report_;
  Player player_{service_, phone_, report_, Output::kNothing};
  long restarts_ = 0;
};

TEST_F(Soak, WorksWhileThePlatformFailsAtRandom) { Run(20260304, fp_host::Share(3000)); }

using LongSoak = Soak;
TEST_F(LongSoak, DoesNotGrowOverManyAttempts) { Run(std::random_device()(), kManyAttempts); }

}  // namespace
}  // namespace fp_service

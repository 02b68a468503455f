// SPDX-License-Identifier: Apache-2.0
#include "playback.h"

#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <new>
#include <span>
#include <stdexcept>
#include <type_traits>

#include "fp_host/device.h"

namespace fp_service {
namespace {

namespace fs = std::filesystem;

constexpr char kPersistentFolder[] = "data/vendor";  // survives a power-off
constexpr char kAttemptsFile[] = "data/vendor/fingerprint/AuthStats.0";

// State that the processes of the service pass on to each other.
struct Shared {
  explicit Shared(uint64_t seed) : phone(seed) {}

  PhoneState phone;
  Report report;
};
static_assert(std::is_trivially_copyable_v<Shared>);

// Lives as long as this process.
Shared& MakeShared(uint64_t seed) {
  void* memory =
      mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) {
    throw std::runtime_error("cannot map shared memory");
  }
  return *new (memory) Shared(seed);
}

// One way to play a scenario.
struct Pass {
  std::string device_root;
  Properties properties;
  Output output;
  Shared& shared;
  const Report* uncontrolled;  // to compare with at the end, or null
};

void PrintLoadedHistory(const Service& service) {
  if (service.GetHistorySize() == 0) {
    fmt::print("first start: no history yet\n");
  } else {
    fmt::print("found {} attempts of earlier runs\n", service.GetHistorySize());
  }
}

bool EndsService(const Event& event) {
  return std::holds_alternative<Restart>(event.data) ||
         std::holds_alternative<PowerCut>(event.data);
}

// Runs the service from its start to its end. Called in a child process.
void RunService(const Pass& pass, const Scenario& scenario, std::span<const Event> events) {
  Phone phone(pass.device_root, pass.shared.phone);
  SetProperties(pass.properties);
  if (!events.empty()) {
    phone.SetTime(events.front().at);
  }
  Service service(phone);
  if (pass.output != Output::kNothing) {
    PrintLoadedHistory(service);
  }
  Player player(service, phone, pass.shared.report, pass.output);
  for (const Event& event : events) {
    player.Play(event);
  }
  const bool is_last = events.empty() || &events.back() == &scenario.back();
  if (is_last && pass.output != Output::kNothing) {
    if (pass.uncontrolled != nullptr) {
      fmt::print("\n{}\n", pass.shared.report.Compare(*pass.uncontrolled, scenario));
    }
    PrintDump(service, pass.output);
  }
  fflush(stdout);
  if (!events.empty() && std::holds_alternative<PowerCut>(events.back().data)) {
    raise(SIGKILL);
  }
}

int WaitForEnd(pid_t process) {
  int status = 0;
  while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

void RunServiceInChild(const Pass& pass, const Scenario& scenario, std::span<const Event> events) {
  fflush(stdout);
  const pid_t process = fork();
  if (process < 0) {
    throw std::runtime_error("cannot start the service's process");
  }
  if (process == 0) {
    RunService(pass, scenario, events);
    exit(0);
  }
  const int status = WaitForEnd(process);
  const bool cut = !events.empty() && std::holds_alternative<PowerCut>(events.back().data);
  if (WIFSIGNALED(status) && !(cut && WTERMSIG(status) == SIGKILL)) {
    throw std::runtime_error(
        fmt::format("the service was terminated by {}", strsignal(WTERMSIG(status))));
  }
  if (WIFEXITED(status) && WEXITSTATUS(status) != 0) {
    throw std::runtime_error("the service has failed");  // it has printed the reason
  }
}

// Truncates the file to half, as if the power had failed during the last write.
void TruncateAttemptsFile(const Pass& pass) {
  const fs::path file = fs::path(pass.device_root) / kAttemptsFile;
  std::error_code error;
  const auto size = fs::file_size(file, error);
  if (error) {
    return;
  }
  fs::resize_file(file, size / 2);
  if (pass.output != Output::kNothing) {
    fmt::print("power cut during a save: {} of {} bytes of AuthStats.0 are left\n", size / 2, size);
  }
}

void Play(const Pass& pass, const Scenario& scenario) {
  for (auto begin = scenario.begin(); begin != scenario.end();) {
    auto end = std::find_if(begin, scenario.end(), EndsService);
    end += end == scenario.end() ? 0 : 1;
    RunServiceInChild(pass, scenario, {begin, end});
    if (std::holds_alternative<PowerCut>((end - 1)->data)) {
      TruncateAttemptsFile(pass);
    }
    begin = end;
  }
}

}  // namespace

void PlayTwice(const Scenario& scenario, const Settings& settings) {
  const fp_host::ScratchFolder copy("fp_service");
  if (const fs::path files = fs::path(settings.device_root) / kPersistentFolder;
      fs::exists(files)) {
    fs::create_directories(copy.GetPath() + "/" + kPersistentFolder);
    fs::copy(files, copy.GetPath() + "/" + kPersistentFolder, fs::copy_options::recursive);
  }
  Properties uncontrolled = settings.properties;
  uncontrolled.emplace_back("persist.vendor.udfps.dynamic_exposure_supported", "false");
  Shared& without = MakeShared(settings.seed);
  Play({copy.GetPath(), uncontrolled, Output::kNothing, without, nullptr}, scenario);
  Play({settings.device_root, settings.properties,
        settings.verbose ? Output::kAttempts : Output::kDumps, MakeShared(settings.seed),
        &without.report},
       scenario);
}

void PrintStoredState(const Settings& settings) {
  RunServiceInChild(
      {settings.device_root, settings.properties,
       settings.verbose ? Output::kAttempts : Output::kDumps, MakeShared(settings.seed), nullptr},
      {}, {});
}

}  // namespace fp_service

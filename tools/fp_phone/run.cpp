// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "commands.h"
#include "environment.h"
#include "fp_host/device.h"
#include "program.h"
#include "touch_line.h"

namespace fp_phone {
namespace {

namespace fs = std::filesystem;

constexpr int kSignalBase = 128;
constexpr int kLogMode = 0644;

// Leaves room in a path for the longest one that the device itself makes below its root.
constexpr size_t kMaxRoot = PATH_MAX - 256;

// The folder of the libraries: that of the simulated device, with which this program is linked.
fs::path LibraryFolder() {
  Dl_info device = {};
  dladdr(reinterpret_cast<void*>(&fp_host::SetDeviceRoot), &device);
  return fs::canonical(device.dli_fname).parent_path();
}

// An empty text, or why the root cannot be a phone.
std::string PrepareRoot(const Options& options) {
  std::error_code error;
  fs::create_directories(options.StateFolder(), error);
  if (fs::exists(options.root) && !fs::is_directory(options.root)) {
    return "is not a folder";
  }
  if (!error && access(options.root.c_str(), W_OK | X_OK) != 0) {
    error.assign(errno, std::generic_category());
  }
  if (error) {
    return error.message();
  }
  if (fs::absolute(options.root).native().size() > kMaxRoot) {
    return "the path is too long";
  }
  const int log = open(options.LogFile().c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, kLogMode);
  if (log < 0) {
    return fmt::format("the log cannot be opened: {}", strerror(errno));
  }
  close(log);
  return {};
}

void SetVariable(const char* variable, const std::string& value) {
  setenv(variable, value.c_str(), 1);
}

// The value of FP_DEVICE_CLOCK. A clock that runs is ahead of the host's by the same time in all
// processes of the program.
std::string ValueOf(const Clock& clock) {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  const auto now_ms = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
  return clock.is_stopped ? fmt::format("={}", clock.at_ms)
                          : fmt::format("{}", clock.at_ms - now_ms);
}

// The environment of the program.
void SetEnvironment(const Options& options, const TouchLine& touch) {
  const std::string folder = LibraryFolder();
  std::string preload = fmt::format("{0}/libfp_device.so:{0}/libfp_phone.so", folder);
  if (!options.services.empty() || !options.lux.empty()) {
    preload += fmt::format(":{}/libfp_phone_services.so", folder);
  }
  if (const char* const others = getenv("LD_PRELOAD"); others != nullptr && others[0] != '\0') {
    preload += std::string(":") + others;
  }
  fp_host::SetDeviceRoot(options.root);
  fp_host::BootDevice();
  SetVariable("LD_PRELOAD", preload);
  SetVariable(kPropertiesVariable, fmt::format("{}", fmt::join(options.properties, "\n")));
  SetVariable(kLogVariable, fs::canonical(options.LogFile()));
  SetVariable(kLogFormatVariable, options.log_format);
  SetVariable(kLogFilterVariable, fmt::format("{}", fmt::join(options.log_filters, " ")));
  SetVariable(kServicesVariable, fmt::format("{}", fmt::join(options.services, ",")));
  if (!options.skin.empty()) {
    SetVariable(kSkinVariable, options.skin);
  }
  if (!options.lux.empty()) {
    SetVariable(kLuxVariable, options.lux);
  }
  if (options.clock) {
    SetVariable("FP_DEVICE_CLOCK", ValueOf(*options.clock));
  }
  if (touch.GetDevice() >= 0) {
    SetVariable("FP_DEVICE_TOUCH", std::to_string(touch.GetDevice()));
  }
}

// The signals that end programs, and the one that tells that the program has ended.
sigset_t WaitedSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGCHLD}) {
    sigaddset(&signals, signal);
  }
  return signals;
}

// In the child: executes the program. Tells the parent if it cannot. The program would be of no use
// without the phone's touch device, so it ends with the parent.
[[noreturn]] void ExecuteInChild(const char* path, char* const* arguments, const sigset_t& mask,
                                 pid_t parent, int failure) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() != parent) {  // it ended before prctl()
    _exit(kCannotRun);
  }
  sigprocmask(SIG_SETMASK, &mask, nullptr);
  execv(path, arguments);
  const int error = errno;
  [[maybe_unused]] const ssize_t written = write(failure, &error, sizeof error);
  _exit(kCannotRun);
}

// Waits for the program and gives it the signals that this process gets. The program has got
// those of the terminal's keys itself.
int WaitFor(pid_t child, const sigset_t& signals) {
  int status = 0;
  while (waitpid(child, &status, WNOHANG) == 0) {
    siginfo_t info = {};
    const int signal = sigwaitinfo(&signals, &info);
    if (signal > 0 && signal != SIGCHLD && info.si_code != SI_KERNEL) {
      kill(child, signal);
    }
  }
  return status;
}

int ExitCodeOf(int status, const std::string& name) {
  if (WIFEXITED(status)) {
    return WEXITSTATUS(status);
  }
  const int signal = WTERMSIG(status);
  if (signal == SIGABRT) {
    PrintError("{} aborted (signal {})", Printable(name), signal);
  } else {
    PrintError("{} was killed by signal {} ({})", Printable(name), signal, strsignal(signal));
  }
  return kSignalBase + signal;
}

int Execute(const Options& options, const std::string& path, const sigset_t& mask) {
  int failure[2] = {-1, -1};
  if (pipe2(failure, O_CLOEXEC) != 0) {
    PrintError("{}", strerror(errno));
    return kNotStarted;
  }
  // Made before fork(), because another thread may hold the lock of the heap.
  std::vector<char*> arguments;
  for (const std::string& argument : options.program) {
    arguments.push_back(const_cast<char*>(argument.c_str()));
  }
  arguments.push_back(nullptr);
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child == 0) {
    ExecuteInChild(path.c_str(), arguments.data(), mask, parent, failure[1]);
  }
  close(failure[1]);
  if (child < 0) {
    PrintError("{}", strerror(errno));
    return kNotStarted;
  }
  int error = 0;
  const bool has_failed = read(failure[0], &error, sizeof error) == sizeof error;
  close(failure[0]);
  const int status = WaitFor(child, WaitedSignals());
  if (has_failed) {
    PrintError("{}: {}", Printable(path), strerror(error));
    return kCannotRun;
  }
  return ExitCodeOf(status, options.program.front());
}

}  // namespace

int Run(const Options& options) {
  const Program program = FindProgram(options.program.front());
  if (!program.refusal.empty()) {
    PrintError("{}", program.refusal);
    return program.exit_code;
  }
  if (LibraryFolder().native().find_first_of(": \t") != std::string::npos) {
    PrintError("{}: a path with a space or colon cannot be preloaded", LibraryFolder().native());
    return kNotStarted;
  }
  if (const std::string why = PrepareRoot(options); !why.empty()) {
    PrintError("{}: {}", Printable(options.root), why);
    return kNotStarted;
  }
  signal(SIGCHLD, SIG_DFL);  // whoever ignores it is not told that the program has ended
  // Blocked before the thread of the touch device starts, so that this thread gets none of them.
  const sigset_t signals = WaitedSignals();
  sigset_t mask;
  sigprocmask(SIG_BLOCK, &signals, &mask);
  TouchLine touch;
  if (const std::string why = options.has_touch ? touch.Open(options.StateFolder()) : "";
      !why.empty()) {
    PrintError("{}: {}", Printable(options.root), why);
    return kNotStarted;
  }
  SetEnvironment(options, touch);
  const int exit_code = Execute(options, program.path, mask);
  touch.Close();
  return exit_code;
}

}  // namespace fp_phone

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <string>

// Controls of the simulated services and of the service manager. A simulated service is in this
// program but behaves like one in another process: clients reach it through proxies, its death is
// announced on a thread of the binder pool, and after a restart clients need new proxies.

namespace fp_host {

namespace ipc {
struct CallPlan;
class Process;
}  // namespace ipc

// A service manager that fails declares nothing, finds nothing, and lets nobody wait.
void SetServiceManagerFailing(bool failing);

// How long looking up a service takes at least, for callers that would wait for it.
void SetLookUpDelay(std::chrono::milliseconds delay);

// Whether, within a bound, the number of threads that wait for services comes to be `threads`.
bool WaitForWaitingThreads(int threads);

// Whether this program's pools have run all that had arrived for them when this was called.
bool WaitForPools();

// One service with one instance. Not declared and not up at first.
//
// Threading:  any thread may call any operation, also while calls into the service are running.
class RemoteService {
 public:
  // Relative to the service's work for the call: before, it never saw it; during, it has done the
  // work and nobody hears of it; after, the answer is just out.
  enum class Death { kBefore, kDuring, kAfter };

  // The service dies and is no longer declared.
  virtual ~RemoteService();
  RemoteService(const RemoteService&) = delete;
  RemoteService& operator=(const RemoteService&) = delete;

  const std::string& GetInstance() const { return instance_; }

  // Whether the device's manifest names it.
  void Declare();
  void Undeclare();

  // A new process with the service in its initial state; no effect while one is up.
  void Start();
  // Something starts under the service's name that is not the service.
  void StartImpostor();
  void Kill();
  bool IsUp() const;

  // The call that ends the process: 1 is the next one, 0 none.
  void DieAtCall(int number, Death moment);
  // How long each call takes at least.
  void SetDelay(std::chrono::milliseconds delay);
  // Calls wait, unanswered, until they are let go or the process dies.
  void Hold();
  void Release();
  // Whether, within a bound, at least `calls` calls came to wait there.
  bool WaitForHeldCalls(int calls) const;
  // Calls that reached the service so far, over all its processes.
  int CountCalls() const;

 protected:
  explicit RemoteService(std::string instance);

  // Makes the service in its initial state, or something else, as an object of `process`, in the
  // form in which the service manager keeps it.
  virtual std::shared_ptr<void> MakeService(const std::shared_ptr<ipc::Process>& process) = 0;
  virtual std::shared_ptr<void> MakeImpostor(const std::shared_ptr<ipc::Process>& process) = 0;

 private:
  using Maker = std::shared_ptr<void> (RemoteService::*)(const std::shared_ptr<ipc::Process>&);
  void Appear(Maker make);

  // Constant after construction.
  const std::string instance_;
  const std::shared_ptr<ipc::CallPlan> plan_;

  mutable std::mutex mutex_;

  // Guarded by mutex_.
  std::shared_ptr<ipc::Process> process_;
};

}  // namespace fp_host

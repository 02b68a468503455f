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

// While the service manager fails, no service is declared or found, and waiting for one returns
// null.
void SetServiceManagerFailing(bool failing);

// The minimum time that waiting for a service takes, even if the service is up.
void SetLookUpDelay(std::chrono::milliseconds delay);

// Waits, within a bound, until `threads` threads wait for services. False on timeout.
bool WaitForWaitingThreads(int threads);

// Waits, within a bound, until the thread pools of this program are idle. False on timeout.
bool WaitForPools();

// One service with one instance. Not declared and not up at first.
//
// Threading:  any thread may call any operation, also while calls into the service are running.
class RemoteService {
 public:
  // When the process dies: before the service sees the call; after the service has executed the
  // call, but before the answer is sent; right after the answer was sent.
  enum class Death { kBefore, kDuring, kAfter };

  // The service dies and is no longer declared.
  virtual ~RemoteService();
  RemoteService(const RemoteService&) = delete;
  RemoteService& operator=(const RemoteService&) = delete;

  const std::string& GetInstance() const { return instance_; }

  // Adds the service to the device's manifest, or removes it.
  void Declare();
  void Undeclare();

  // Starts a new process with the service in its initial state; no effect while one is up.
  void Start();
  // Starts a process that registers an object of another interface under the service's name.
  void StartImpostor();
  // The process dies. Calls under way, also those that Hold() holds, fail as those of a dead
  // service.
  void Kill();
  // Kills the process, if one is up, and starts another.
  void Restart();
  bool IsUp() const;

  // Makes the process die at a later call: 1 is the next call; 0 cancels the death.
  void DieAtCall(int number, Death moment);
  // The minimum duration of each call.
  void SetDelay(std::chrono::milliseconds delay);
  // Calls wait until Release() or until the process dies.
  void Hold();
  void Release();
  // Waits, within a bound, until at least `calls` calls are held. False on timeout.
  bool WaitForHeldCalls(int calls) const;
  // Ends what Refuse() of the services has set: calls are served again.
  virtual void Accept() = 0;
  // Ends DieAtCall(), SetDelay(), Hold() and refusals, and starts the service if it is down.
  void Repair();

  // The number of calls that reached the service, over all its processes.
  int CountCalls() const;

 protected:
  explicit RemoteService(std::string instance);

  // Make the service in its initial state, or an object of another interface. The object belongs to
  // `process` and has the type that the service manager stores.
  virtual std::shared_ptr<void> MakeService(const std::shared_ptr<ipc::Process>& process) = 0;
  virtual std::shared_ptr<void> MakeImpostor(const std::shared_ptr<ipc::Process>& process) = 0;

 private:
  using Maker = std::shared_ptr<void> (RemoteService::*)(const std::shared_ptr<ipc::Process>&);
  void StartObject(Maker make);

  // Constant after construction.
  const std::string instance_;
  const std::shared_ptr<ipc::CallPlan> plan_;

  mutable std::mutex mutex_;

  // Guarded by mutex_.
  std::shared_ptr<ipc::Process> process_;
};

}  // namespace fp_host

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <memory>
#include <mutex>
#include <string>

#include "fp_host/scoped.h"

// Controls of the simulated services and of the service managers. A simulated service is in this
// program but behaves like one in another process: clients reach it through proxies, its death is
// announced on a thread of the binder pool, and after a restart clients need new proxies. Calls run
// on the client's thread, one-way calls on a thread of the pool.
//
// Threading:  any thread may call any function.

namespace fp_host {

namespace ipc {
struct CallPlan;
class Process;
}  // namespace ipc

// While the service managers fail, no service is declared or found, and waits for one, also those
// under way, return null. Existing connections keep working.
void SetServiceManagerFailing(bool failing);

class ScopedServiceManagerFailure : public Scoped {
 public:
  ScopedServiceManagerFailure() { SetServiceManagerFailing(true); }
  ~ScopedServiceManagerFailure() { SetServiceManagerFailing(false); }
};

// The minimum time that later waits for a service take, even if the service is up. 0 at first.
void SetServiceWaitDelay(std::chrono::milliseconds delay);

// Waits, for at most 10 s, until `threads` threads wait for services. False on timeout.
bool WaitForServiceWaiters(int threads);

// Waits, for at most 10 s, until the threads of the binder and HIDL pools of this program have run
// what was posted: one-way calls and death notifications. False on timeout, and while a pool that
// was not started has work.
bool WaitUntilBinderPoolsIdle();

// One service with one instance. Not declared and not up at first, no delay, no refusal.
//
// Threading:  any thread may call any operation, also while calls into the service are running.
// Ownership:  clients may outlive the object: their calls fail as those of a dead service.
class RemoteService {
 public:
  // When the process dies: before the service sees the call; after the service has executed the
  // call, but before the answer is sent; right after the answer was sent.
  enum class Death { kBeforeCall, kBeforeAnswer, kAfterAnswer };

  // The service dies and is no longer declared.
  virtual ~RemoteService();
  RemoteService(const RemoteService&) = delete;
  RemoteService& operator=(const RemoteService&) = delete;

  const std::string& GetInstance() const { return instance_; }

  // Adds the service to the device's manifest, or removes it.
  void Declare();
  void Undeclare();

  // Starts a new process with the service in its initial state; no effect while one is up. Aborts
  // with a message if another object's service is up under the same name.
  void Start();
  // Starts a process that registers an object of another interface under the service's name.
  void StartImpostor();
  // The process dies: calls that wait for Release() or for the delay fail without being served,
  // calls that are being served fail after that. Clients are notified on the binder pool; see
  // WaitUntilBinderPoolsIdle().
  void Kill();
  // Kills the process, if one is up, and starts another.
  void Restart();
  bool IsUp() const;

  // What follows is kept when the service is restarted.

  // Makes the process die at a later call: 1 is the next call; 0 cancels the death.
  void DieAtCall(int number, Death moment);
  // The minimum duration of each later call, before it is served.
  void SetDelay(std::chrono::milliseconds delay);
  // Calls wait until Release() or until the process dies.
  void Hold();
  void Release();
  // Waits, for at most 10 s, until at least `calls` calls are held. False on timeout.
  bool WaitForHeldCalls(int calls) const;
  // Ends what the service's Refuse() has set: calls are served again.
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

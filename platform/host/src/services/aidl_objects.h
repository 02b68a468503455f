// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include <android/binder_auto_utils.h>

#include "ipc/process.h"

namespace fp_host {

// Makes `local` an object of `process`. Returns its proxy, in the form in which the service manager
// stores it.
std::shared_ptr<void> Publish(const ndk::SpAIBinder& local, std::shared_ptr<ipc::Process> process);

// The same for a new object of an interface that no client knows.
std::shared_ptr<void> PublishUnknownInterface(std::shared_ptr<ipc::Process> process);

}  // namespace fp_host

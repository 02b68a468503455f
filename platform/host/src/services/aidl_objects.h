// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include <android/binder_auto_utils.h>

#include "ipc/process.h"

namespace fp_host {

// `local` as an object of `process`, in the form in which the service manager keeps it.
std::shared_ptr<void> Publish(const ndk::SpAIBinder& local, std::shared_ptr<ipc::Process> process);

// The same for an object of an interface that nobody expects.
std::shared_ptr<void> PublishUnknownInterface(std::shared_ptr<ipc::Process> process);

}  // namespace fp_host

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include <android/binder_auto_utils.h>

namespace fp_host::binder {

// A binder in the form in which the service manager keeps it.
std::shared_ptr<void> ToEntry(const ndk::SpAIBinder& binder);

}  // namespace fp_host::binder

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include <android/binder_process.h>

#include "fp_host/display_service.h"
#include "fp_host/testing.h"
#include "fp_utils/display_controller.h"

namespace fp_test {

// A working display HAL, and a controller that is not connected yet.
class DisplayTest : public ::testing::Test {
 protected:
  DisplayTest() {
    ABinderProcess_startThreadPool();
    service_.Declare();
    service_.Start();
    Create();
  }

  void Create() { controller_ = std::make_unique<android::fp_utils::DisplayController>(); }

  int Set(bool on) {
    elapsed_ = 4711;
    return controller_->SetLhbm(on, &elapsed_);
  }

  // Returns once the controller has been notified of the death.
  void Kill() {
    service_.Kill();
    EXPECT_TRUE(fp_host::WaitUntilBinderPoolsIdle());
  }

  fp_host::DisplayService service_;
  std::unique_ptr<android::fp_utils::DisplayController> controller_;
  unsigned elapsed_ = 0;
};

}  // namespace fp_test

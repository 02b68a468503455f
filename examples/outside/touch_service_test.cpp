// SPDX-License-Identifier: Apache-2.0
#include "touch_service.h"

#include <android/binder_process.h>

#include "fp_host/display_service.h"
#include "fp_host/testing.h"
#include "fp_host/touch_node.h"

class TouchServiceTest : public fp_host::DeviceTest {
 protected:
  TouchServiceTest() {
    ABinderProcess_startThreadPool();
    display_.Declare();
    display_.Start();
  }

  void Touch() { touch_.Push({{.id = 1, .type = 0}}); }

  fp_host::DisplayService display_;
  fp_host::TouchNode touch_;
  fp_host::Recorder<bool> images_;  // whether the sensor was lit
  TouchService service_{[this] { images_.Add(display_.IsLhbmOn()); }};
};

TEST_F(TouchServiceTest, CapturesAfterTheDisplayDiedInACapture) {
  ASSERT_TRUE(service_.Start());
  display_.Hold();
  Touch();
  ASSERT_TRUE(display_.WaitForHeldCalls(1));  // the service is switching the light on
  display_.Kill();
  ASSERT_TRUE(fp_host::WaitUntilBinderPoolsIdle());  // the service has heard of the death
  display_.Repair();

  Touch();
  EXPECT_EQ(std::vector<bool>{true}, images_.Take(1));
  EXPECT_TRUE(fp_host::Eventually([this] { return !display_.IsLhbmOn(); }));
  EXPECT_EQ(0u, images_.Count());  // the first touch gave no image
  EXPECT_EQ(1u, fp_host::CountLinesWith(fp_host::TakeLog(), "Failed to setLhbmState 1"));
}

// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cerrno>

#include "fp_host/faults.h"
#include "fp_host/touch_node.h"

namespace fp_host {
namespace {

TEST(DeviceDeathTest, MisuseAborts) {
  EXPECT_DEATH(SetFault({.function = "stat", .error = EIO}), "no faults for stat\\(\\)");
  EXPECT_DEATH(SetFault({.function = "read"}), "needs an error, or a length");
  const TouchNode node;
  EXPECT_DEATH(TouchNode(), "only one may exist at a time");
}

}  // namespace
}  // namespace fp_host

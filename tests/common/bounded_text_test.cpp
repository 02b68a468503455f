// SPDX-License-Identifier: Apache-2.0
#include "common/bounded_text.h"

#include <gtest/gtest.h>

namespace android::fp_utils {
namespace {

TEST(BoundedText, IsCutAndStaysInItsBuffer) {
  struct {
    BoundedText<8> text;
    BoundedText<8> next;
  } both;
  both.next.Append("%s", "next");
  both.text.Append("%c", 'a');
  both.text.Append("%lc", wint_t{0x110000});  // no character, so vsnprintf() fails
  EXPECT_EQ("a", both.text.ToString());
  for (int i = 0; i < 2; ++i) {
    both.text.Append("%s", "bcdefghijklmnopqrstuvwxyz");
    EXPECT_EQ("abcdefg", both.text.ToString());
  }
  EXPECT_EQ("next", both.next.ToString());
}

}  // namespace
}  // namespace android::fp_utils

// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/dev_cdt_info.h"

#include "fp_host/testing.h"
#include "fp_utils/version_compare.h"

namespace android::fp_utils {
namespace {

using namespace fp_host;

const std::string kFolder = "/sys/firmware/devicetree/base/chosen/plat/";

class DevCdtInfoTest : public DeviceTest {};

TEST_F(DevCdtInfoTest, ReadsBigEndianCellsOnce) {
  using namespace std::string_literals;
  WriteFile(kFolder + "platform", "\0\0\0\x0a"s);
  WriteFile(kFolder + "product", "\xff\x02\x03\x04 and more"s);
  WriteFile(kFolder + "stage", "\x05"s);
  WriteFile(kFolder + "major", "");
  WriteFile(kFolder + "variant", "\0\0\1\2"s);
  const DevCdtInfo& info = DevCdtInfo::GetInstance();
  EXPECT_EQ(0x0au, info.platform);
  EXPECT_EQ(0xff020304u, info.product);
  EXPECT_EQ(0x05000000u, info.stage) << "bytes that are not there count as 0";
  EXPECT_EQ(0u, info.major);
  EXPECT_EQ(0u, info.minor);
  EXPECT_EQ(0x102u, info.variant);
  EXPECT_LOG(Error("DevCdtInfo", "Failed to open \"" + kFolder + "minor\" with error 2."),
             Debug("DevCdtInfo", "DevCdtInfo: platform:0x0a"),
             Debug("DevCdtInfo", "DevCdtInfo: product:0xff020304"),
             Debug("DevCdtInfo", "DevCdtInfo: stage:0x5000000"),
             Debug("DevCdtInfo", "DevCdtInfo: major:0x00"),
             Debug("DevCdtInfo", "DevCdtInfo: minro:0x00"),
             Debug("DevCdtInfo", "DevCdtInfo: variant_0x102"));
  WriteFile(kFolder + "platform", "\0\0\0\x0b"s);
  EXPECT_EQ(0x0au, DevCdtInfo::GetInstance().platform);
}

TEST_F(DevCdtInfoTest, FailuresGiveZero) {
  Remove("/sys/firmware/devicetree/base/chosen");
  DevCdtInfo info;
  EXPECT_EQ(12u, TakeLog().size()) << "an error and a value for each item";

  BootDevice();
  WriteFile(kFolder + "stage", "1234");
  SetFault({.function = "read", .error = EIO});
  EXPECT_EQ(0u, info.GetDevCdtInfoItem("stage"));
  EXPECT_LOG(Error("DevCdtInfo", "Failed to read CDT item \"stage\" with error 5."));
  SetFault({.function = "read", .shorten_to = 3});
  EXPECT_EQ(0x31323300u, info.GetDevCdtInfoItem("stage"));
  EXPECT_EQ(0x31323334u, info.GetDevCdtInfoItem("stage"));
}

TEST(VersionCompare, IsAComparisonOfBytes) {
  EXPECT_TRUE(VersionCompare::checkEqual("1.0", "1.0"));
  EXPECT_FALSE(VersionCompare::checkEqual("1.0", "1.00"));
  EXPECT_FALSE(VersionCompare::checkEqual(std::string("a\0b", 3), std::string("a\0c", 3)));
}

}  // namespace
}  // namespace android::fp_utils

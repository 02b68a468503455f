// SPDX-License-Identifier: Apache-2.0
#include "fp_utils/dev_cdt_info.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>

#include "common/log.h"

namespace android::fp_utils {
namespace {

constexpr char kTag[] = "DevCdtInfo";
constexpr char kDirectory[] = "/sys/firmware/devicetree/base/chosen/plat";

}  // namespace

DevCdtInfo& DevCdtInfo::GetInstance() {
  static auto* const instance = new DevCdtInfo;
  return *instance;
}

// Initialised with braces because C libraries define macros major() and minor().
DevCdtInfo::DevCdtInfo()
    : platform{GetDevCdtInfoItem("platform")},
      product{GetDevCdtInfoItem("product")},
      stage{GetDevCdtInfoItem("stage")},
      major{GetDevCdtInfoItem("major")},
      minor{GetDevCdtInfoItem("minor")},
      variant{GetDevCdtInfoItem("variant")} {
  // The misspelt "minro" and the "variant_" without a colon are kept: tools that read these logs
  // search for them.
  FP_LOG_DEBUG(kTag, "%s: platform:0x%02x", kTag, platform);
  FP_LOG_DEBUG(kTag, "%s: product:0x%02x", kTag, product);
  FP_LOG_DEBUG(kTag, "%s: stage:0x%02x", kTag, stage);
  FP_LOG_DEBUG(kTag, "%s: major:0x%02x", kTag, major);
  FP_LOG_DEBUG(kTag, "%s: minro:0x%02x", kTag, minor);
  FP_LOG_DEBUG(kTag, "%s: variant_0x%02x", kTag, variant);
}

uint32_t DevCdtInfo::GetDevCdtInfoItem(const char* item) {
  const std::string path = std::string(kDirectory) + "/" + item;
  // The descriptor is left open; the process reads each item once.
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    FP_LOG_ERROR(kTag, "Failed to open \"%s\" with error %d.", path.c_str(), errno);
    return 0;
  }
  std::array<uint8_t, 4> cell = {};
  if (read(fd, cell.data(), cell.size()) < 0) {
    FP_LOG_ERROR(kTag, "Failed to read CDT item \"%s\" with error %d.", item, errno);
    return 0;
  }
  return static_cast<uint32_t>(cell[0]) << 24 | static_cast<uint32_t>(cell[1]) << 16 |
         static_cast<uint32_t>(cell[2]) << 8 | cell[3];
}

}  // namespace android::fp_utils

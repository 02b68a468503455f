// SPDX-License-Identifier: Apache-2.0
#pragma once

// The environment variables through which `fp_phone run` controls the libraries that it preloads.
// Those of the simulated device itself begin with FP_DEVICE_.

namespace fp_phone {

// Lines NAME=VALUE.
constexpr char kPropertiesVariable[] = "FP_PHONE_PROPERTIES";

// The host's path of the file with the log; format and filter of what is printed, as logcat takes
// them.
constexpr char kLogVariable[] = "FP_PHONE_LOG";
constexpr char kLogFormatVariable[] = "FP_PHONE_LOG_FORMAT";
constexpr char kLogFilterVariable[] = "FP_PHONE_LOG_FILTER";

// Names of services with commas between them; what the skin and light sensors measure.
constexpr char kServicesVariable[] = "FP_PHONE_SERVICES";
constexpr char kSkinVariable[] = "FP_PHONE_SKIN";
constexpr char kLuxVariable[] = "FP_PHONE_LUX";

}  // namespace fp_phone

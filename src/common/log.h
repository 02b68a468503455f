// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <android/log.h>

// The library logs through __android_log_print alone, one tag per class.
#define FP_LOG_DEBUG(tag, ...) __android_log_print(ANDROID_LOG_DEBUG, tag, __VA_ARGS__)
#define FP_LOG_INFO(tag, ...) __android_log_print(ANDROID_LOG_INFO, tag, __VA_ARGS__)
#define FP_LOG_WARN(tag, ...) __android_log_print(ANDROID_LOG_WARN, tag, __VA_ARGS__)
#define FP_LOG_ERROR(tag, ...) __android_log_print(ANDROID_LOG_ERROR, tag, __VA_ARGS__)

namespace android::fp_utils::log_tag {

inline constexpr char kAuthEvent[] = "AuthEvent";
inline constexpr char kAuthEventG7[] = "AuthEventG7";
inline constexpr char kAuthStats[] = "AuthStats";
inline constexpr char kAuthStatsG7[] = "AuthStatsG7";
inline constexpr char kCriticalErrors[] = "CriticalErrors";
inline constexpr char kDynamicExposure[] = "DynamicExposure";
inline constexpr char kEnrollEvent[] = "EnrollEvent";
inline constexpr char kEnrollEventContainer[] = "EnrollEventContainer";
inline constexpr char kEnrollEventG7[] = "EnrollEventG7";
inline constexpr char kFingerSizes[] = "FingerSizes";
inline constexpr char kGeometry[] = "Geometry";

}  // namespace android::fp_utils::log_tag

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <cstdint>

#include <android/looper.h>
#include <android/sensor.h>
#include <utils/Errors.h>

#include "common/log.h"

// Operations that the clients of the sensor framework share. Each logs with its own `tag`.

namespace android::fp_utils {

// Null without a sensor service.
ASensorManager* GetSensorManager(const char* tag);

// Creates the looper and the queue if they are null. Returns false if one cannot be created; it
// stays null.
bool PrepareQueue(const char* tag, ASensorManager* manager, ALooper*& looper,
                  ASensorEventQueue*& queue);

// Starts the sensor's events at its fastest rate, each delivered at once.
int RegisterSensor(ASensorEventQueue* queue, const ASensor* sensor);

// The number of events that are fetched at a time, into a buffer on the stack.
inline constexpr ssize_t kSensorBatch = 16;

// Polls and fetches until a batch is not full, which means that the queue is empty. `fetch` gets
// what the poll returned and returns how many events it has put into the buffer, 0 or less to end;
// `take` gets a batch and returns whether to go on. UNKNOWN_ERROR after a poll error, else 0.
template <typename Fetch, typename Take>
int32_t DrainSensorEvents(const char* tag, int timeout_ms, Fetch fetch, Take take) {
  ASensorEvent events[kSensorBatch] = {};
  ssize_t count = 0;
  do {
    const int polled = ALooper_pollOnce(timeout_ms, nullptr, nullptr, nullptr);
    if (polled == ALOOPER_POLL_ERROR) {
      FP_LOG_ERROR(tag, "Sensor event looper returned a poll error.");
      return UNKNOWN_ERROR;
    }
    count = fetch(polled, events);
    if (count < 1 || !take(events, count)) {
      break;
    }
  } while (count == kSensorBatch);
  return OK;
}

}  // namespace android::fp_utils

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cstddef>
#include <deque>
#include <set>
#include <string>
#include <vector>

#include <android/sensor.h>

#include "fp_host/sensor_service.h"

// The objects behind the platform's opaque handles. They are never freed, so the use of a dead
// handle is detected and no later handle has its address.

struct ASensor {
  ASensorManager* manager;
  fp_host::FakeSensor info;
};

struct ASensorManager {
  explicit ASensorManager(int number) : number(number) {}

  const int number;
  std::atomic<bool> alive = true;
  std::deque<ASensor> sensors;  // a deque keeps their addresses
  std::vector<ASensorRef> list;
  bool has_list = false;
};

// Guarded by the service's mutex, except constant members.
struct ASensorEventQueue {
  ASensorEventQueue(int number, ASensorManager* manager) : number(number), manager(manager) {}

  const int number;
  ASensorManager* const manager;
  std::atomic<bool> destroyed = false;
  std::set<const ASensor*> enabled;
  std::vector<ASensorEvent> events;  // those before next_event were read
  size_t next_event = 0;
};

namespace fp_host {

inline bool IsAlive(const ASensorManager* manager) { return manager->alive; }
inline bool IsAlive(const ASensor* sensor) { return sensor->manager->alive; }
inline bool IsAlive(const ASensorEventQueue* queue) {
  return queue->manager->alive && !queue->destroyed;
}
inline bool IsAlive(const ALooper* /*looper*/) { return true; }

// The name of a handle in the record of calls.
inline std::string NameOf(const ASensorManager* manager) {
  return "manager " + std::to_string(manager->number);
}
inline std::string NameOf(const ASensor* sensor) { return sensor->info.name; }
inline std::string NameOf(const ASensorEventQueue* queue) {
  return "queue " + std::to_string(queue->number);
}
inline std::string NameOf(const ALooper* /*looper*/) { return "looper"; }

}  // namespace fp_host

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <cstddef>
#include <deque>
#include <set>
#include <string>
#include <vector>

#include <android/sensor.h>

#include "control/sensor_service.h"

// What the platform's opaque handles point to. None is ever freed: a handle that is used after its
// end is recognised, and no later handle has its address.

struct ASensor {
  ASensorManager* manager;
  fp_host::FakeSensor info;
};

struct ASensorManager {
  explicit ASensorManager(int number) : number(number) {}

  const int number;
  std::atomic<bool> alive = true;
  std::deque<ASensor> sensors;  // their addresses stay
  std::vector<ASensorRef> list;
  bool has_list = false;
};

// Guarded by the service's mutex, but for what is constant.
struct ASensorEventQueue {
  ASensorEventQueue(int number, ASensorManager* manager) : number(number), manager(manager) {}

  const int number;
  ASensorManager* const manager;
  std::atomic<bool> destroyed = false;
  std::set<const ASensor*> enabled;
  std::vector<ASensorEvent> events;  // those before next_event are taken
  size_t next_event = 0;
};

namespace fp_host {

inline bool IsAlive(const ASensorManager* manager) { return manager->alive; }
inline bool IsAlive(const ASensor* sensor) { return sensor->manager->alive; }
inline bool IsAlive(const ASensorEventQueue* queue) {
  return queue->manager->alive && !queue->destroyed;
}
inline bool IsAlive(const ALooper* /*looper*/) { return true; }

// How the record of calls names a handle.
inline std::string NameOf(const ASensorManager* manager) {
  return "manager " + std::to_string(manager->number);
}
inline std::string NameOf(const ASensor* sensor) { return sensor->info.name; }
inline std::string NameOf(const ASensorEventQueue* queue) {
  return "queue " + std::to_string(queue->number);
}
inline std::string NameOf(const ALooper* /*looper*/) { return "looper"; }

}  // namespace fp_host

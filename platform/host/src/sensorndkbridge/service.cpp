// SPDX-License-Identifier: Apache-2.0
#include "sensorndkbridge/service.h"

#include <algorithm>
#include <utility>

#include <utils/Errors.h>

#include "sensorndkbridge/calls.h"
#include "sensorndkbridge/looper.h"

namespace fp_host {
namespace {

using android::BAD_VALUE;
using android::OK;

template <typename Handle>
bool IsUsable(const Handle* handle) {
  return handle != nullptr && IsAlive(handle);
}

}  // namespace

SensorService& SensorService::Get() {
  static auto* const service = new SensorService;
  return *service;
}

void SensorService::SetSensors(std::vector<FakeSensor> sensors) {
  const std::lock_guard lock(mutex_);
  sensors_ = std::move(sensors);
}

void SensorService::Stop(WhileDown while_down) {
  std::vector<ASensorEventQueue*> dead;
  {
    const std::lock_guard lock(mutex_);
    state_ = while_down == WhileDown::kWait ? State::kDownAndAwaited : State::kDown;
    if (manager_ != nullptr) {
      manager_->alive = false;
    }
    manager_ = nullptr;
    dead.swap(queues_);
    for (ASensorEventQueue* queue : dead) {
      queue->events = {};
    }
  }
  state_changed_.notify_all();
  for (ASensorEventQueue* queue : dead) {
    TheLooper().Forget(queue);
  }
}

void SensorService::Start() {
  const std::lock_guard lock(mutex_);
  state_ = State::kUp;
  state_changed_.notify_all();
}

SensorUsage SensorService::GetUsage() {
  const std::lock_guard lock(mutex_);
  SensorUsage usage;
  for (const ASensorEventQueue* queue : queues_) {
    ++usage.queues;
    usage.enabled_sensors += static_cast<int>(queue->enabled.size());
  }
  return usage;
}

ASensorManager* SensorService::Connect() {
  std::unique_lock lock(mutex_);
  state_changed_.wait(lock, [this] { return state_ != State::kDownAndAwaited; });
  if (state_ == State::kUp && manager_ == nullptr) {
    const int number = static_cast<int>(managers_.size()) + 1;
    manager_ = managers_.emplace_back(std::make_unique<ASensorManager>(number)).get();
  }
  return manager_;
}

// Queries only once per manager: it keeps its first list, which is empty if the query failed.
void SensorService::LoadList(ASensorManager& manager) {
  if (manager.has_list) {
    return;
  }
  manager.has_list = true;
  if (TakeFault(kListQuery)) {
    return;
  }
  for (const FakeSensor& sensor : sensors_) {
    manager.sensors.push_back({&manager, sensor});
    manager.list.push_back(&manager.sensors.back());
  }
}

int SensorService::GetSensorList(ASensorManager* manager, ASensorList* list) {
  const std::lock_guard lock(mutex_);
  if (!IsUsable(manager)) {
    return BAD_VALUE;
  }
  LoadList(*manager);
  if (list != nullptr) {
    *list = manager->list.data();
  }
  return static_cast<int>(manager->list.size());
}

const ASensor* SensorService::GetDefaultSensor(ASensorManager* manager, int type) {
  const std::lock_guard lock(mutex_);
  if (!IsUsable(manager)) {
    return nullptr;
  }
  LoadList(*manager);
  const auto found = std::find_if(manager->list.begin(), manager->list.end(),
                                  [type](ASensorRef s) { return s->info.type == type; });
  return found == manager->list.end() ? nullptr : *found;
}

ASensorEventQueue* SensorService::CreateQueue(ASensorManager* manager) {
  const std::lock_guard lock(mutex_);
  if (!IsUsable(manager)) {
    return nullptr;
  }
  const int number = static_cast<int>(all_queues_.size()) + 1;
  all_queues_.push_back(std::make_unique<ASensorEventQueue>(number, manager));
  ASensorEventQueue* queue = all_queues_.back().get();
  queues_.push_back(queue);
  return queue;
}

int SensorService::DestroyQueue(ASensorManager* manager, ASensorEventQueue* queue) {
  {
    const std::lock_guard lock(mutex_);
    if (!IsUsable(manager) || !IsUsable(queue)) {
      return BAD_VALUE;
    }
    queue->destroyed = true;
    queue->events = {};
    std::erase(queues_, queue);
  }
  TheLooper().Forget(queue);
  return OK;
}

int SensorService::Enable(ASensorEventQueue* queue, const ASensor* sensor) {
  bool reports = false;
  {
    const std::lock_guard lock(mutex_);
    if (!IsUsable(queue) || !IsAlive(sensor)) {
      return BAD_VALUE;
    }
    const bool is_new = queue->enabled.insert(sensor).second;
    reports = is_new && ReportCurrentValue(*queue, *sensor);
  }
  if (reports) {
    TheLooper().SignalData(queue);
  }
  return OK;
}

int SensorService::Disable(ASensorEventQueue* queue, const ASensor* sensor) {
  const std::lock_guard lock(mutex_);
  if (!IsUsable(queue)) {
    return BAD_VALUE;
  }
  queue->enabled.erase(sensor);
  return OK;
}

ssize_t SensorService::GetEvents(ASensorEventQueue* queue, ASensorEvent* events, size_t count) {
  const std::lock_guard lock(mutex_);
  if (!IsUsable(queue)) {
    return BAD_VALUE;
  }
  const auto first = queue->events.begin() + static_cast<std::ptrdiff_t>(queue->next_event);
  count = std::min(count, queue->events.size() - queue->next_event);
  std::copy_n(first, count, events);
  queue->next_event += count;
  if (queue->next_event == queue->events.size()) {
    queue->events.clear();
    queue->next_event = 0;
  }
  return static_cast<ssize_t>(count);
}

void SetSensors(std::vector<FakeSensor> sensors) {
  SensorService::Get().SetSensors(std::move(sensors));
}
void KillSensorService(WhileDown while_down) { SensorService::Get().Stop(while_down); }
void StartSensorService() { SensorService::Get().Start(); }
void RestartSensorService() {
  KillSensorService(WhileDown::kWait);
  StartSensorService();
}
SensorUsage GetSensorUsage() { return SensorService::Get().GetUsage(); }

}  // namespace fp_host

// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "binder/ibinder.h"

namespace fp_host::binder {

class DeathLink;

// The links of one recipient, newest last. They keep it in mind, so it outlives the recipient.
struct LinkList {
  std::mutex mutex;
  std::vector<std::shared_ptr<DeathLink>> links;  // Guarded by mutex.
};

// One successful or failed AIBinder_linkToDeath(). Its end is what onUnlinked tells: the recipient
// and a notification that is under way share it, so that comes after both.
class DeathLink : public std::enable_shared_from_this<DeathLink> {
 public:
  DeathLink(const AIBinder_DeathRecipient& recipient, const AIBinder* binder, void* cookie);
  ~DeathLink();
  DeathLink(const DeathLink&) = delete;
  DeathLink& operator=(const DeathLink&) = delete;

  bool IsOf(const AIBinder* binder, const void* cookie) const;
  // Tells the recipient and takes the link out of its list.
  void Deliver();

 private:
  const AIBinder_DeathRecipient_onBinderDied on_died_;
  const AIBinder_DeathRecipient_onBinderUnlinked on_unlinked_;
  void* const cookie_;
  const std::weak_ptr<WeakCell> binder_;
  const std::weak_ptr<LinkList> list_;
};

}  // namespace fp_host::binder

struct AIBinder_DeathRecipient {
  const AIBinder_DeathRecipient_onBinderDied on_died;
  std::atomic<AIBinder_DeathRecipient_onBinderUnlinked> on_unlinked = nullptr;
  const std::shared_ptr<fp_host::binder::LinkList> list =
      std::make_shared<fp_host::binder::LinkList>();
};

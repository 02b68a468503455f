// SPDX-License-Identifier: Apache-2.0
#include "binder/death.h"

#include <algorithm>
#include <utility>

namespace fp_host::binder {

DeathLink::DeathLink(const AIBinder_DeathRecipient& recipient, const AIBinder* binder, void* cookie)
    : on_died_(recipient.on_died),
      on_unlinked_(recipient.on_unlinked),
      cookie_(cookie),
      binder_(binder->GetWeakCell()),
      list_(recipient.list) {}

DeathLink::~DeathLink() {
  if (on_unlinked_ != nullptr) {
    on_unlinked_(cookie_);
  }
}

bool DeathLink::IsOf(const AIBinder* binder, const void* cookie) const {
  return cookie_ == cookie && binder_.lock() == binder->GetWeakCell();
}

void DeathLink::Deliver() {
  on_died_(cookie_);
  const std::shared_ptr<LinkList> list = list_.lock();
  if (list == nullptr) {
    return;  // the recipient was deleted meanwhile
  }
  const std::lock_guard lock(list->mutex);
  // The notification holds on to the link, so that it does not end here, under the lock.
  std::erase(list->links, shared_from_this());
}

namespace {

binder_status_t Link(AIBinder* binder, AIBinder_DeathRecipient* recipient, void* cookie) {
  const auto link = std::make_shared<DeathLink>(*recipient, binder, cookie);
  // Locked from before the first moment at which a notification could come.
  const std::lock_guard lock(recipient->list->mutex);
  RemoteBinder* remote = binder->AsRemote();
  const binder_status_t status = remote == nullptr ? STATUS_INVALID_OPERATION : remote->Link(link);
  if (status == STATUS_OK) {
    recipient->list->links.push_back(link);
  }
  return status;
}

std::shared_ptr<DeathLink> TakeNewest(LinkList& list, const AIBinder* binder, const void* cookie) {
  const std::lock_guard lock(list.mutex);
  const auto found = std::find_if(list.links.rbegin(), list.links.rend(),
                                  [&](const auto& link) { return link->IsOf(binder, cookie); });
  if (found == list.links.rend()) {
    return nullptr;
  }
  std::shared_ptr<DeathLink> link = std::move(*found);
  list.links.erase(std::next(found).base());
  return link;
}

}  // namespace
}  // namespace fp_host::binder

AIBinder_DeathRecipient* AIBinder_DeathRecipient_new(
    AIBinder_DeathRecipient_onBinderDied on_binder_died) {
  return on_binder_died == nullptr ? nullptr : new AIBinder_DeathRecipient{on_binder_died};
}

void AIBinder_DeathRecipient_setOnUnlinked(AIBinder_DeathRecipient* recipient,
                                           AIBinder_DeathRecipient_onBinderUnlinked on_unlinked) {
  if (recipient != nullptr) {
    recipient->on_unlinked = on_unlinked;
  }
}

void AIBinder_DeathRecipient_delete(AIBinder_DeathRecipient* recipient) {
  if (recipient == nullptr) {
    return;
  }
  std::vector<std::shared_ptr<fp_host::binder::DeathLink>> links;
  {
    const std::lock_guard lock(recipient->list->mutex);
    links.swap(recipient->list->links);
  }
  delete recipient;
}

binder_status_t AIBinder_linkToDeath(AIBinder* binder, AIBinder_DeathRecipient* recipient,
                                     void* cookie) {
  if (binder == nullptr || recipient == nullptr) {
    return STATUS_UNEXPECTED_NULL;
  }
  return fp_host::binder::Link(binder, recipient, cookie);
}

binder_status_t AIBinder_unlinkToDeath(AIBinder* binder, AIBinder_DeathRecipient* recipient,
                                       void* cookie) {
  if (binder == nullptr || recipient == nullptr) {
    return STATUS_UNEXPECTED_NULL;
  }
  const auto link = fp_host::binder::TakeNewest(*recipient->list, binder, cookie);
  // Only remote binders get into the list.
  return link == nullptr ? STATUS_NAME_NOT_FOUND : binder->AsRemote()->Unlink(link.get());
}

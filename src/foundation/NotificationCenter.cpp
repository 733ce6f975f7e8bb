// SPDX-License-Identifier: Apache-2.0

#include "foundation/NotificationCenter.h"

#include <utility>
#include <vector>

NotificationCenter::Observation NotificationCenter::addObserver(std::string_view name, const void* object,
                                                                Handler handler) {
  auto entry = std::make_shared<Entry>(Entry{std::string(name), object, std::move(handler)});
  entries_.push_back(entry);
  return entry;
}

void NotificationCenter::post(const Notification& notification) {
  entries_.remove_if([](const std::weak_ptr<Entry>& entry) { return entry.expired(); });
  const std::vector<std::weak_ptr<Entry>> told(entries_.begin(), entries_.end());
  for (const auto& weak : told) {
    const auto entry = weak.lock();
    if (entry == nullptr || entry->name != notification.name) continue;
    if (entry->object != nullptr && entry->object != notification.object) continue;
    entry->handler(notification);
  }
}

// SPDX-License-Identifier: Apache-2.0

#include "foundation/KeyValueObserving.h"

#include <utility>
#include <vector>

KeyValueObserving::Observation KeyValueObserving::observe(Observer observer) {
  auto held = std::make_shared<Observer>(std::move(observer));
  observers_.push_back(held);
  return held;
}

void KeyValueObserving::announce(std::string_view key, Moment moment) {
  observers_.remove_if([](const std::weak_ptr<Observer>& observer) { return observer.expired(); });
  const std::vector<std::weak_ptr<Observer>> told(observers_.begin(), observers_.end());
  for (const auto& weak : told) {
    if (const auto observer = weak.lock()) (*observer)(key, moment);
  }
}

// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <list>
#include <memory>
#include <string_view>

/// Announces changes of properties by key, with a will-change and a did-change for each. Pairs may nest. Observers may
/// change properties and end observations while they are called.
class KeyValueObserving {
 public:
  enum class Moment { willChange, didChange };
  using Observer = std::function<void(std::string_view key, Moment moment)>;
  /// Ends the observation when it is destroyed. May outlive the observed object.
  using Observation = std::shared_ptr<void>;

  KeyValueObserving() = default;
  KeyValueObserving(const KeyValueObserving&) = delete;
  KeyValueObserving& operator=(const KeyValueObserving&) = delete;
  virtual ~KeyValueObserving() = default;

  void willChangeValueForKey(std::string_view key) { announce(key, Moment::willChange); }
  void didChangeValueForKey(std::string_view key) { announce(key, Moment::didChange); }

  /// Observes every key. Observers are called in the order of their registration.
  [[nodiscard]] Observation observe(Observer observer);

 private:
  void announce(std::string_view key, Moment moment);

  std::list<std::weak_ptr<Observer>> observers_;
};

#pragma once

#include <functional>
#include <list>
#include <memory>
#include <string_view>

/// Announces the changes of properties by key name, a will-change and a did-change for each. Pairs may nest, and an
/// observer may change a property, or end an observation, while it is told of another change.
class KeyValueObserving {
 public:
  enum class Moment { willChange, didChange };
  using Observer = std::function<void(std::string_view key, Moment moment)>;
  /// The observation lasts as long as this object, which may outlive what it observes.
  using Observation = std::shared_ptr<void>;

  KeyValueObserving() = default;
  KeyValueObserving(const KeyValueObserving&) = delete;
  KeyValueObserving& operator=(const KeyValueObserving&) = delete;
  virtual ~KeyValueObserving() = default;

  void willChangeValueForKey(std::string_view key) { announce(key, Moment::willChange); }
  void didChangeValueForKey(std::string_view key) { announce(key, Moment::didChange); }

  /// Observes every key; observers are told in the order in which they came.
  [[nodiscard]] Observation observe(Observer observer);

 private:
  void announce(std::string_view key, Moment moment);

  std::list<std::weak_ptr<Observer>> observers_;
};

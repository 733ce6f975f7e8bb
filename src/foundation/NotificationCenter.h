#pragma once

#include <functional>
#include <list>
#include <memory>
#include <string>
#include <string_view>

#include "foundation/Value.h"

/// Something that happened: a name, the object that it happened to (an identity, never dereferenced), and values.
struct Notification {
  std::string name;
  const void* object = nullptr;
  Value::Dictionary userInfo = {};
};

/// Delivers notifications to their observers, synchronously, in the order in which they came. A handler may post, add
/// and remove while it is told.
class NotificationCenter {
 public:
  using Handler = std::function<void(const Notification&)>;
  /// The observation lasts as long as this object.
  using Observation = std::shared_ptr<void>;

  /// `object` null: from any object.
  [[nodiscard]] Observation addObserver(std::string_view name, const void* object, Handler handler);

  void post(const Notification& notification);

 private:
  struct Entry {
    std::string name;
    const void* object;
    Handler handler;
  };
  std::list<std::weak_ptr<Entry>> entries_;
};

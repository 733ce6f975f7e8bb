// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <list>
#include <memory>
#include <string>
#include <string_view>

#include "foundation/Value.h"

/// An event: a name, the object that it concerns (an identity, never dereferenced), and values.
struct Notification {
  std::string name;
  const void* object = nullptr;
  Value::Dictionary userInfo = {};
};

/// Delivers notifications to their observers synchronously, in the order of registration. Handlers may post, add and
/// remove.
class NotificationCenter {
 public:
  using Handler = std::function<void(const Notification&)>;
  /// Ends the observation when it is destroyed.
  using Observation = std::shared_ptr<void>;

  /// Observes notifications of `object`, or of any object when it is null.
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

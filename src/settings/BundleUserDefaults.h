// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

#include "foundation/NotificationCenter.h"
#include "foundation/Value.h"
#include "platform/Platform.h"

/// A settings store for one preferences domain. Missing values fall back to registered defaults, which are kept only in
/// memory. Writes the changes of its domain when the program terminates.
class BundleUserDefaults {
 public:
  [[nodiscard]] static BundleUserDefaults initWithPersistentDomainName(Platform& platform, std::string domain);

  /// Returns the stored value, else the registered default, else none.
  [[nodiscard]] Value objectForKey(const std::string& key) const;

  /// Changes the value in memory; synchronize() writes it.
  void setObject(Value value, const std::string& forKey);
  void removeObjectForKey(const std::string& key);

  /// Replaces all registered defaults.
  void registerDefaults(Value::Dictionary defaults);

  /// Writes the changes of the domain. Returns false when that failed.
  bool synchronize();

 private:
  BundleUserDefaults(Platform& platform, std::string domain);

  Preferences& preferences_;
  std::string applicationID_;
  std::optional<Value::Dictionary> registrationDictionary_;
  NotificationCenter::Observation terminationObservation_;
};

#pragma once

#include <optional>
#include <string>

#include "foundation/NotificationCenter.h"
#include "foundation/Value.h"
#include "platform/Platform.h"

/// Domain in which the installer keeps its own settings.
inline constexpr const char* installerPreferencesDomain = "com.corvane.installer";

/// A settings store on one named preferences domain. What the domain does not hold falls back to registered defaults,
/// which are kept in memory only. A store that lives until the program ends writes its domain's changes then.
class BundleUserDefaults {
 public:
  [[nodiscard]] static BundleUserDefaults initWithPersistentDomainName(Platform& platform, std::string domain);

  /// The stored value, else the registered one, else none.
  [[nodiscard]] Value objectForKey(const std::string& key) const;

  /// In memory; synchronize() writes it.
  void setObject(Value value, const std::string& forKey);
  void removeObjectForKey(const std::string& key);

  /// Replaces what was registered before, as a whole.
  void registerDefaults(Value::Dictionary defaults);

  /// Writes the domain's changes; false when that failed.
  bool synchronize();

 private:
  BundleUserDefaults(Platform& platform, std::string domain);

  Preferences& preferences_;
  std::string applicationID_;
  std::optional<Value::Dictionary> registrationDictionary_;
  NotificationCenter::Observation terminationObservation_;
};

// SPDX-License-Identifier: Apache-2.0

#include "settings/BundleUserDefaults.h"

#include <utility>

BundleUserDefaults BundleUserDefaults::initWithPersistentDomainName(Platform& platform, std::string domain) {
  return {platform, std::move(domain)};
}

BundleUserDefaults::BundleUserDefaults(Platform& platform, std::string domain)
    : preferences_(platform.preferences), applicationID_(std::move(domain)) {
  // The handler keeps what it needs by value: a store may be moved while it is registered.
  terminationObservation_ = platform.notifications.addObserver(
      applicationWillTerminateNotification, nullptr,
      [&preferences = preferences_, name = applicationID_](const Notification&) { preferences.synchronize(name); });
}

Value BundleUserDefaults::objectForKey(const std::string& key) const {
  Value stored = preferences_.copyAppValue(key, applicationID_);
  if (!stored.isNone() || !registrationDictionary_) return stored;
  const auto registered = registrationDictionary_->find(key);
  return registered != registrationDictionary_->end() ? registered->second : Value();
}

void BundleUserDefaults::setObject(Value value, const std::string& forKey) {
  preferences_.setAppValue(forKey, std::move(value), applicationID_);
}

void BundleUserDefaults::removeObjectForKey(const std::string& key) {
  preferences_.setAppValue(key, Value(), applicationID_);
}

void BundleUserDefaults::registerDefaults(Value::Dictionary defaults) { registrationDictionary_ = std::move(defaults); }

bool BundleUserDefaults::synchronize() { return preferences_.synchronize(applicationID_); }

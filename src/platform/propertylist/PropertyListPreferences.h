// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>

#include "platform/FileSystem.h"
#include "platform/Folders.h"
#include "platform/Log.h"
#include "platform/Preferences.h"

/// Preferences as one property list a domain: the user's in Library/Preferences of the home folder, those for all users
/// in /Library/Preferences. The destructor writes pending changes.
class PropertyListPreferences final : public Preferences {
 public:
  PropertyListPreferences(FileSystem& files, const Folders& folders, Log& log)
      : files_(files), folders_(folders), log_(log) {}
  PropertyListPreferences(const PropertyListPreferences&) = delete;
  PropertyListPreferences& operator=(const PropertyListPreferences&) = delete;
  ~PropertyListPreferences() override;

  [[nodiscard]] Value copyAppValue(const std::string& key, const std::string& domain) override;
  void setAppValue(const std::string& key, Value value, const std::string& domain) override;
  bool synchronize(const std::string& domain) override;

 private:
  [[nodiscard]] static bool isDomainName(const std::string& domain);
  [[nodiscard]] std::string userFile(const std::string& domain) const;
  [[nodiscard]] Value valueForAllUsers(const std::string& key, const std::string& domain) const;
  /// Returns the dictionary in the file: empty when there is no file, nothing when it is malformed.
  [[nodiscard]] std::optional<Value::Dictionary> read(const std::string& path) const;

  FileSystem& files_;
  const Folders& folders_;
  Log& log_;
  /// Changes that are not written yet, by domain and key. No value: to be deleted.
  std::map<std::string, Value::Dictionary> changes_;
  mutable std::set<std::string> complaints_;  ///< lines that the log has
};

// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <set>
#include <string>

#include "platform/Log.h"
#include "platform/Preferences.h"

/// Preferences of this user on the running system, through the system's own service: what a file says may be older
/// than what the service holds.
class MacPreferences final : public Preferences {
 public:
  explicit MacPreferences(Log& log) : log_(log) {}
  MacPreferences(const MacPreferences&) = delete;
  MacPreferences& operator=(const MacPreferences&) = delete;
  ~MacPreferences() override;

  [[nodiscard]] Value copyAppValue(const std::string& key, const std::string& domain) override;
  void setAppValue(const std::string& key, Value value, const std::string& domain) override;
  bool synchronize(const std::string& domain) override;

 private:
  Log& log_;
  std::set<std::string> changed_;  ///< domains with values that are not written yet
};

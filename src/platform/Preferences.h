// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "foundation/Value.h"

/// The preferences service: values by key in named domains, for the current user and any host.
class Preferences {
 public:
  Preferences() = default;
  Preferences(const Preferences&) = delete;
  Preferences& operator=(const Preferences&) = delete;
  virtual ~Preferences() = default;

  /// The value that the domain holds for the key, the user's own before the one for all users; changes that are not yet
  /// written count. No value when there is none or the domain cannot be read.
  [[nodiscard]] virtual Value copyAppValue(const std::string& key, const std::string& domain) = 0;

  /// Stores the value in memory; no value deletes the key.
  virtual void setAppValue(const std::string& key, Value value, const std::string& domain) = 0;

  /// Writes the domain's changes to permanent storage, all of them or none. False when that failed; the changes are
  /// then kept in memory. A domain whose stored form cannot be understood is not overwritten.
  virtual bool synchronize(const std::string& domain) = 0;
};

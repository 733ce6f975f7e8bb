// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "platform/files/Volume.h"

/// Where on a volume administrator rights are used for what the user's own do not allow: where this program installs
/// into.
class Places {
 public:
  /// `home` is the user's on the volume. It is a place only when it belongs to the user: an account's home may be "/".
  Places(const Volume& volume, const std::string& home, uid_t user);

  /// Whether `resolved` lies strictly inside a place. The path is Place::resolved.
  [[nodiscard]] bool cover(const std::string& resolved) const;

  /// Whether it is a place, or a folder that holds one.
  [[nodiscard]] bool holdOne(const std::string& resolved) const;

  /// Either of them: what can be created with the rights.
  [[nodiscard]] bool reach(const std::string& resolved) const { return cover(resolved) || holdOne(resolved); }

 private:
  // Not resolved on purpose: a link where a folder of this name should be leads to somewhere else, which is no place.
  std::vector<std::string> paths_ = {"/Applications", "/Library/Application Support"};
};

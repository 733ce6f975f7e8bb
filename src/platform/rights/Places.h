#pragma once

#include <string>
#include <vector>

#include "platform/files/Volume.h"

/// Where on a volume the helper's rights go further than those of its user: where this program installs into.
class Places {
 public:
  /// `home` is the user's on the volume. It is a place only when it belongs to the user: an account's home may be "/".
  Places(const Volume& volume, const std::string& home, uid_t user);

  /// Whether `resolved` lies strictly inside a place. The path is Place::resolved.
  [[nodiscard]] bool cover(const std::string& resolved) const;

  /// Whether it is a place, or a folder that holds one.
  [[nodiscard]] bool holdOne(const std::string& resolved) const;

  /// Either of them: what the helper can create.
  [[nodiscard]] bool reach(const std::string& resolved) const { return cover(resolved) || holdOne(resolved); }

 private:
  // Not resolved on purpose: a link where a folder of this name should be leads to somewhere else, which is no place.
  std::vector<std::string> paths_ = {"/Applications", "/Library/Application Support"};
};

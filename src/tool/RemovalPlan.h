// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "platform/Platform.h"

/// What a removal is to leave where it is, and why.
struct KeptPath {
  enum class Reason {
    unknown,     ///< the log lists it, but this installer could not have put it there
    foreign,     ///< it lies in what was installed and is no part of it
    changed,     ///< its content is not what was installed
    other,       ///< something else has its name
    unreadable,  ///< nobody can tell
    empty,       ///< a folder that the removal leaves empty; it may have been there before the install
    failed,      ///< it cannot be removed; `problem` says why
  };
  std::string path;
  Reason reason;
  std::string problem = {};
  [[nodiscard]] bool operator==(const KeptPath&) const = default;
};

/// An application that the system knows of and that goes.
struct RegisteredApplication {
  std::string path;
  std::string identifier;
  [[nodiscard]] bool operator==(const RegisteredApplication&) const = default;
};

/// What the removal of everything that the log of installed paths lists comes to. Nothing is in it that the installer
/// could not have put there, whatever the log says.
struct RemovalPlan {
  std::string log;                        ///< empty: there is none
  std::vector<std::string> removed = {};  ///< newest first; none of them lies in another
  std::vector<std::string> gone = {};     ///< listed, and not there any more
  std::vector<std::string> changed = {};  ///< files that were changed since the install, and are removed
  std::vector<KeptPath> kept = {};
  std::vector<std::string> logged = {};       ///< lines of the log, in its order, without those that are gone
  std::vector<std::string> stillLogged = {};  ///< those of them that stand for something that stays
  std::vector<RegisteredApplication> applications = {};
  [[nodiscard]] bool operator==(const RemovalPlan&) const = default;
};

/// Looks at the volume and changes nothing. With `keepsChanged`, files that were changed since the install stay.
[[nodiscard]] RemovalPlan planRemoval(Platform& platform, bool keepsChanged);

/// The folder of the maker that would be empty without the path, or the one above it, and so on; the path itself where
/// there is none.
[[nodiscard]] std::string withEmptiedFolders(Platform& platform, const std::string& path);

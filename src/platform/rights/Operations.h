// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <string>

#include "platform/files/Elevation.h"
#include "platform/posix/PosixUser.h"
#include "platform/rights/Operation.h"

/// Rights of this system beyond those of the thread: what a transaction needs, and files.
class LocalElevation : public Elevation {
 public:
  /// Creates an empty file for the user under a free name.
  virtual Status makeFile(const Volume::Spot& place) = 0;
};

/// Carries out privileged changes, in this process: as root for root, in the helper for everybody else.
///
/// Each is done with the rights of this thread and, where they do not suffice, with the elevation. A path is resolved
/// once into an open folder and a name, inside the volume; nothing is followed after that. What belongs to others is
/// neither handed over nor changed.
class Operations {
 public:
  /// `applicationsFolder` holds the entries of registered applications, on the volume.
  Operations(const Volume& volume, LocalElevation& elevation, const UserAccount& user, std::string applicationsFolder);

  /// Does it on every path, and returns the first error.
  Status run(const Operation& operation) const;

  /// Owner and group of what is installed.
  [[nodiscard]] const Ownership& ownership() const { return ownership_; }
  [[nodiscard]] const std::string& userName() const { return user_.name; }

 private:
  using Work = std::function<Status(const Volume::Spot& place)>;

  Status runOnPath(const Operation& operation, const std::string& path) const;
  Status withFewestRights(const std::string& path, const Work& own, const Work& elevated) const;
  Status remove(const std::string& path) const;
  Status makeFile(const std::string& path) const;
  Status replace(const std::string& from, const std::string& path) const;
  Status updateApplications() const;

  const Volume& volume_;
  LocalElevation& elevation_;
  const UserAccount& user_;
  Ownership ownership_;
  std::string applicationsFolder_;
};

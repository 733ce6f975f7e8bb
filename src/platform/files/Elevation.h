// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <sys/types.h>

#include <string>

#include "foundation/Result.h"
#include "platform/files/Volume.h"

/// Owner and group of what is installed.
struct Ownership {
  uid_t user = 0;
  gid_t group = 0;
};

/// Changes with more rights than this thread has. Callers try each change with their own rights first and come here
/// after EACCES or EPERM. Every change fails with operation_not_permitted where the rights do not reach.
class Elevation {
 public:
  Elevation() = default;
  Elevation(const Elevation&) = delete;
  Elevation& operator=(const Elevation&) = delete;
  virtual ~Elevation() = default;

  /// Whether the rights reach the item. `resolved` is its path on the volume without links, as in Volume::Place.
  [[nodiscard]] virtual bool covers(const std::string& resolved) const = 0;

  /// Creates an empty folder for the user, with exactly this mode.
  virtual Status makeFolder(const Volume::Spot& place, mode_t mode) = 0;

  /// Moves an item to a free name, exchanges it with the item there, or moves it over the file there.
  enum class Move { toFreeName, exchange, replace };
  virtual Status move(const Volume::Spot& from, const Volume::Spot& to, Move how) = 0;

  /// Removes the item with everything below it, following no link.
  virtual Status remove(const Volume::Spot& place) = 0;

  /// Gives the user's items, here and below, to the user and the group; leaves items of others alone.
  virtual Status handOver(const Volume::Spot& place) = 0;
};

/// Whether the error means that more rights could help.
[[nodiscard]] inline bool isLackOfRights(const Status& status) {
  return !status &&
         (status.error().is(std::errc::permission_denied) || status.error().is(std::errc::operation_not_permitted));
}

/// For a process that has no further rights.
class NoElevation : public Elevation {
 public:
  [[nodiscard]] bool covers(const std::string& /*resolved*/) const override { return false; }
  Status makeFolder(const Volume::Spot& place, mode_t /*mode*/) override { return refuse(place); }
  Status move(const Volume::Spot& from, const Volume::Spot& /*to*/, Move /*how*/) override { return refuse(from); }
  Status remove(const Volume::Spot& place) override { return refuse(place); }
  Status handOver(const Volume::Spot& place) override { return refuse(place); }

 private:
  static Status refuse(const Volume::Spot& place) {
    return Error::posix(std::errc::operation_not_permitted, place.resolved);
  }
};

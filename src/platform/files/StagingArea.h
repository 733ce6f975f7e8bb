// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <string>
#include <utility>

#include "platform/files/Elevation.h"

/// The hidden folder, one on each file system, in which items wait for their places:
///
///     .installing/
///       3/         staged copies for one folder of the volume; after an exchange, the old items
///       3.old/     old items that were set aside, because the file system cannot exchange names or because they go
///       3.to       a link whose text is that folder's path on the volume
///       area.1     a link whose text is the path of another such area, on another file system
///       done       there when nothing in the area will be needed again
///
/// The area of the file system that holds "/Library/Application Support" lies there and is found by every installer.
/// Only the holder of the volume's lock may use it.
class StagingArea {
 public:
  static constexpr const char* folderName = ".installing";
  static constexpr const char* mainParent = "/Library/Application Support";

  /// A folder of staged items, and the one for what is set aside.
  struct Folder {
    FileDescriptor staged;
    bool inheritsOwnership = false;  ///< whether what is created there belongs to the user and the group by itself
  };

  /// Creates the area in the folder on the volume.
  static Result<StagingArea> create(const Volume& volume, const std::string& parent, Elevation& elevation,
                                    const Ownership& ownership);

  /// Gives every item that an interrupted installer set aside its place again, if that is free, and removes all areas
  /// of the volume. Succeeds when there is none. An area that somebody else could have planted is left alone, and fails
  /// with operation_not_permitted.
  static Status recover(const Volume& volume, Elevation& elevation, const Ownership& ownership);

  [[nodiscard]] const Volume::Place& place() const { return place_; }
  /// The open area, for reading.
  [[nodiscard]] int handle() const { return handle_.get(); }

  /// Notes another area, so that the next installer finds it.
  Status noteArea(const std::string& resolvedPath);

  /// Creates the folder of that number for items that go to `target`, an absolute path on the volume.
  Result<Folder> createFolder(std::size_t number, const std::string& target, Elevation& elevation,
                              const Ownership& ownership);
  [[nodiscard]] FileDescriptor openFolder(std::size_t number) const;
  /// Creates or opens the folder for what is set aside.
  Result<FileDescriptor> openOldFolder(std::size_t number) const;

  enum class Kind { staged, old };
  /// Where an item is in an open folder of the area. `name` lives as long as the result.
  [[nodiscard]] Volume::Spot spotIn(std::size_t number, Kind kind, const FileDescriptor& folder,
                                    const std::string& name) const;
  /// Where a folder of staged items is.
  [[nodiscard]] Volume::Place placeOfFolder(std::size_t number) const;

  /// Notes that what is set aside is not needed any more.
  Status markDone();

  /// Removes the area with all that is in it. Fails at the first item that stays.
  Status remove(Elevation& elevation);

 private:
  StagingArea(Volume::Place place, FileDescriptor handle) : place_(std::move(place)), handle_(std::move(handle)) {}

  Volume::Place place_;    ///< ".installing" in its parent
  FileDescriptor handle_;  ///< the area itself
  std::size_t otherAreas_ = 0;
};

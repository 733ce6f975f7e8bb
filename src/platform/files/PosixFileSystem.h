// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/FileSystem.h"
#include "platform/files/FolderListing.h"
#include "platform/files/Volume.h"
#include "platform/posix/PosixUser.h"

/// The disk behind a Volume.
class PosixFileSystem : public FileSystem {
 public:
  /// `covers` tells where administrator rights reach, as Elevation::covers().
  PosixFileSystem(const Volume& volume, const PosixUser& user, std::function<bool(const std::string&)> covers)
      : volume_(volume), user_(user), covers_(std::move(covers)) {}

  [[nodiscard]] bool exists(const std::string& path) const override;
  [[nodiscard]] bool isTaken(const std::string& path) const override;
  Result<ItemAttributes> attributesOfItem(const std::string& path) const override;
  Result<std::vector<std::string>> contentsOfDirectory(const std::string& path) const override;
  Result<std::vector<std::string>> listing(const std::string& path) const override;
  using FileSystem::walk;
  void walk(const std::string& folder, const WalkHandlers& handlers) const override;
  Result<FolderContents> entriesOf(const std::string& folder) const override;
  Result<std::vector<TreeItem>> everythingBelow(const std::string& folder) const override;
  Result<std::string> readFile(const std::string& path, std::size_t limit) const override;
  Status createFile(const std::string& path, std::string_view content, std::uint32_t permissions) override;
  Result<std::unique_ptr<WritableFile>> openForWriting(const std::string& path) override;
  Status createDirectory(const std::string& path, std::uint32_t permissions) override;
  Status setAttributes(const std::string& path, const OwnershipAndMode& attributes) override;
  Status removeItem(const std::string& path) override;
  Result<TreeSize> sizeOfItem(const std::string& path) const override;
  Result<DiskSpace> spaceFor(const std::string& path) const override;
  [[nodiscard]] bool mayShareBlocks(const std::string& source, const std::string& target) const override;
  [[nodiscard]] std::vector<Error> unreadable() const override;
  void forgetUnreadable() override { unreadable_.clear(); }
  Status checkTargetFolder(const std::string& path) const override;
  Status checkReplaceable(const std::string& path) const override;
  Status compareItem(const std::string& source, const std::string& target,
                     const ItemComparison& comparison) const override;
  Result<std::unique_ptr<VolumeLock>> tryLock() override;

 private:
  /// Notes the error unless it only says that nothing is there, and passes it on.
  Error noted(Error error, const std::string& path) const;
  Result<std::vector<std::string>> namesIn(const std::string& path, Order order) const;
  /// Opens the item that the path leads to.
  Result<FileDescriptor> open(const std::string& path, int flags, Volume::Purpose purpose) const;
  /// The same for a regular file; anything else fails.
  Result<FileDescriptor> openFile(const std::string& path, int flags, Volume::Purpose purpose) const;
  /// The open folder that the item lies in, or the nearest one above it that exists.
  Result<FileDescriptor> openNearestFolder(const std::string& path) const;
  /// Gives an item that was made in the folder to the logged-in user when this is root; 0 or an errno value.
  [[nodiscard]] int handToUser(int item, int folder) const;

  const Volume& volume_;
  const PosixUser& user_;
  std::function<bool(const std::string&)> covers_;
  mutable std::map<std::string, Error> unreadable_;  ///< by path
};

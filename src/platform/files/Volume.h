// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "foundation/Result.h"
#include "platform/posix/FileDescriptor.h"

/// Maps paths of the target volume to this system; nothing else does. Opens the root once, so renaming or replacing the
/// root's path has no effect.
///
/// Resolves links as a system booted from the volume would: an absolute one starts at the volume's root, and ".." stops
/// there. Paths of the installer's own bundle are those of this system.
class Volume {
 public:
  /// What to do about a link as the last component of a path; links before it are always followed.
  enum class LastLink { keep, follow };

  /// A name in a folder that somebody holds open, for the *at() calls.
  struct Spot {
    int folder;
    const char* name;
    std::string resolved;  ///< the item's path on the volume, without links but perhaps the last
  };

  /// A name in an open folder.
  struct Place {
    FileDescriptor folder;
    std::string name;      ///< "." for the root itself
    std::string resolved;  ///< as in Spot

    [[nodiscard]] Spot spot() const { return {folder.get(), name.c_str(), resolved}; }
  };

  /// `root` is the volume's folder, `bundlePath` the installer's bundle; both real and without links. A root that
  /// cannot be opened fails every call below.
  Volume(std::string root, std::string bundlePath);

  /// The same for a root that is open already.
  Volume(FileDescriptor rootHandle, std::string root, std::string bundlePath);

  [[nodiscard]] const std::string& root() const { return root_; }

  /// What the caller is going to do. A change inside the installer's own bundle fails with read_only_file_system.
  enum class Purpose { look, change };

  /// Where the item is, or would be: the folder must exist, the item need not.
  Result<Place> find(const std::string& path, LastLink lastLink, Purpose purpose) const;

  /// The path on this system, without links but perhaps the last. What does not exist is appended as it is written.
  Result<std::string> realPath(const std::string& path, LastLink lastLink, Purpose purpose) const;

  /// Whether the path is one of the installer's own bundle.
  [[nodiscard]] bool isInBundle(const std::string& path) const;

  /// Whether the path leads to a link whose own target does not exist.
  [[nodiscard]] bool isDanglingLink(const std::string& path) const;

  /// Takes the lock that installers of all users exclude each other with, for as long as the result is open: an
  /// exclusive flock(2) on the root. Fails with device_or_resource_busy when another process holds it. Succeeds without
  /// a lock on a file system that has none.
  Result<std::shared_ptr<FileDescriptor>> tryLock() const;

  /// The lock that this process holds through tryLock(); null when it holds none.
  [[nodiscard]] std::shared_ptr<FileDescriptor> heldLock() const { return lock_.lock(); }

  /// The open root, for its owner and number.
  [[nodiscard]] int rootHandle() const { return rootHandle_.get(); }

 private:
  struct Walk;
  Result<Walk> walk(const std::string& path, LastLink lastLink, Purpose purpose) const;
  [[nodiscard]] static std::string pathOf(const Walk& walk, std::string path);
  [[nodiscard]] std::string realPathOf(const Walk& walk) const;

  FileDescriptor rootHandle_;
  mutable std::weak_ptr<FileDescriptor> lock_;
  std::string root_;
  std::string bundlePath_;
};

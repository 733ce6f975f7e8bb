#pragma once

#include <string>
#include <vector>

#include "foundation/Result.h"
#include "platform/posix/FileDescriptor.h"

/// The target volume: where its paths lie on this system. Nothing else knows.
///
/// Links on the volume are resolved as the system booted from it would: an absolute one starts at the volume's root,
/// and
/// ".." stops there. Paths of the installer's own bundle are those of this system.
class Volume {
 public:
  /// What to do about a link as the last component of a path; links before it are always followed.
  enum class LastLink { keep, follow };

  /// A name in an open folder, for the *at() calls.
  struct Place {
    FileDescriptor folder;
    std::string name;      ///< "." for the root itself
    std::string resolved;  ///< the item's path on the volume, without links but perhaps the last
  };

  /// `root` is the volume's folder, `bundlePath` the installer's bundle; both real and without links.
  Volume(std::string root, std::string bundlePath);

  /// The same for a root that is open already: whatever is done to its path, this is the folder that is meant.
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

 private:
  struct Walk;
  Result<Walk> walk(const std::string& path, LastLink lastLink, Purpose purpose) const;
  [[nodiscard]] static std::string pathOf(const Walk& walk, std::string path);
  [[nodiscard]] std::string realPathOf(const Walk& walk) const;
  [[nodiscard]] FileDescriptor openRoot() const;

  FileDescriptor rootHandle_;  ///< none when the root is looked up by its path each time
  std::string root_;
  std::string bundlePath_;
};

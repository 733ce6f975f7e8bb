// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/Result.h"

enum class ItemType { regularFile, folder, symbolicLink, other };

/// In the system's numbers.
struct ItemOwner {
  std::uint32_t user = 0;
  std::uint32_t group = 0;
  [[nodiscard]] bool operator==(const ItemOwner&) const = default;
};

struct ItemAttributes {
  ItemType type = ItemType::other;
  ItemOwner owner = {};
  std::uint64_t size = 0;                    ///< in bytes
  std::uint32_t permissions = 0;             ///< the permission bits, 0 to 07777
  std::int64_t modificationNanoseconds = 0;  ///< since 1970-01-01 00:00 UTC
};

/// Attributes to set on an item. Empty ones are left unchanged.
struct OwnershipAndMode {
  std::optional<std::string> owner = std::nullopt;  ///< short name of a user
  std::optional<std::string> group = std::nullopt;  ///< name of a group
  std::optional<std::uint32_t> permissions = std::nullopt;
};

/// An item visited by a walk.
struct WalkedItem {
  std::string path;
  ItemType type = ItemType::other;
  bool isPackage = false;  ///< a folder that users see as one item: an application, a plug-in, a bundle
  std::uint64_t size = 0;  ///< of a regular file, in bytes
};

/// The direct entries of a folder.
struct FolderContents {
  std::vector<WalkedItem> visible;
  std::vector<std::string> hidden;  ///< paths
  std::vector<Error> unreadable;    ///< folders of which cannot be told whether they are packages
};

/// An item of a tree with what a maker of bundles can get wrong about it.
struct TreeItem {
  std::string path;  ///< relative to the tree's folder
  ItemType type = ItemType::other;
  bool isPackage = false;
  std::uint64_t size = 0;         ///< of a regular file, in bytes
  std::uint32_t permissions = 0;  ///< the permission bits
  std::string link = {};          ///< where a symbolic link leads, as it is written
  bool isQuarantined = false;     ///< has the mark of a download
};

/// Who is told what on a walk. Both of the last may be left out.
struct WalkHandlers {
  std::function<void(const WalkedItem&)> visit;
  std::function<void(const std::string& path)> hidden = {};
  std::function<void(const Error&)> unreadable = {};  ///< of each folder that cannot be listed; the walk goes on
};

/// A file opened for writing from its start. The destructor closes it.
class WritableFile {
 public:
  WritableFile() = default;
  WritableFile(const WritableFile&) = delete;
  WritableFile& operator=(const WritableFile&) = delete;
  virtual ~WritableFile() = default;

  /// Writes `data` or throws Exception with the reason. Part of it may then have been written.
  virtual void writeData(std::string_view data) = 0;
};

/// Total sizes of an item and everything below it.
struct TreeSize {
  std::uint64_t bytes = 0;      ///< of content
  std::uint64_t allocated = 0;  ///< bytes that the item takes on a disk, about
  std::uint64_t files = 0;      ///< regular files
};

/// Free space of one file system.
struct DiskSpace {
  std::uint64_t fileSystem = 0;  ///< tells file systems apart
  std::uint64_t available = 0;   ///< bytes that this user may still write
};

/// One way in which something installed is not as an install leaves it.
struct ItemDifference {
  enum class Kind {
    missing,
    extra,       ///< nothing like it is in the payload
    type,        ///< a file where a folder should be, or another exchange of this kind
    link,        ///< a link that leads elsewhere, or no link where there should be one
    size,        ///< of a file
    content,     ///< of a file that has the right size
    mode,        ///< permissions
    owner,       ///< user or group
    attributes,  ///< an extended attribute is missing, or has another value
    unreadable,
  };
  Kind kind = Kind::missing;
  std::string path;           ///< on the volume
  std::string expected = {};  ///< for people to read; empty where the kind says it all
  std::string found = {};
};

/// What an installed item is compared with besides its source, and who is told.
struct ItemComparison {
  std::optional<ItemOwner> owner = std::nullopt;       ///< nothing: that of what this program installs
  std::uint32_t permissions = 0;                       ///< of all files and folders
  std::function<bool(const ItemDifference&)> differs;  ///< returns false to end the comparison
};

/// Holds the lock of the volume, which excludes other installers.
class VolumeLock {
 public:
  VolumeLock() = default;
  VolumeLock(const VolumeLock&) = delete;
  VolumeLock& operator=(const VolumeLock&) = delete;
  virtual ~VolumeLock() = default;
};

/// The disk. Paths are those of the target volume, or lie inside the installer's own bundle, which is never changed: a
/// change below it fails with read_only_file_system. Links on the way to an item are followed inside the target volume
/// and never lead out of it. A path without a leading "/" does not exist.
///
/// Changes are made with the rights of this process. Files and folders that it creates belong to the logged-in user and
/// to the group of the folder that they are in, also when it runs as root. Items are installed by a Transaction.
class FileSystem {
 public:
  FileSystem() = default;
  FileSystem(const FileSystem&) = delete;
  FileSystem& operator=(const FileSystem&) = delete;
  virtual ~FileSystem() = default;

  /// Whether the path leads to an item. A dangling link does not.
  [[nodiscard]] virtual bool exists(const std::string& path) const = 0;

  /// Whether the name is in use, be it by a dangling link.
  [[nodiscard]] virtual bool isTaken(const std::string& path) const = 0;

  /// Returns attributes of the item itself. Does not follow a link.
  virtual Result<ItemAttributes> attributesOfItem(const std::string& path) const = 0;

  /// Returns the names of the direct entries, with hidden ones, in ascending byte order.
  virtual Result<std::vector<std::string>> contentsOfDirectory(const std::string& path) const = 0;

  /// The same names in the order in which the file system lists them.
  virtual Result<std::vector<std::string>> listing(const std::string& path) const = 0;

  /// Visits everything below the folder except hidden items and what lies in packages: a folder before its content,
  /// entries in ascending byte order. Links are visited, not followed. A handler may change the folder's content.
  virtual void walk(const std::string& folder, const WalkHandlers& handlers) const = 0;

  /// Walks likewise and skips folders that cannot be listed.
  void walk(const std::string& folder, const std::function<void(const WalkedItem&)>& visit) const {
    walk(folder, WalkHandlers{.visit = visit});
  }

  /// The direct entries as walk() shows them.
  virtual Result<FolderContents> entriesOf(const std::string& folder) const = 0;
  /// The visible ones; none when the folder cannot be listed.
  [[nodiscard]] std::vector<WalkedItem> visibleEntries(const std::string& folder) const {
    return entriesOf(folder).valueOr({}).visible;
  }

  /// Everything below the folder: a folder before its content, entries in ascending byte order. Hidden items and what
  /// lies in packages are included; links are listed and not followed. The content of a folder that cannot be opened is
  /// left out.
  virtual Result<std::vector<TreeItem>> everythingBelow(const std::string& folder) const = 0;

  /// The bytes of a regular file, at most `limit` of them from its start. Does not wait for a writer of a pipe.
  virtual Result<std::string> readFile(const std::string& path, std::size_t limit) const = 0;

  /// Creates the file atomically: flushes it under a hidden name, then renames it. Replaces a file or a link of that
  /// name. Fails when the name is that of a folder.
  virtual Status createFile(const std::string& path, std::string_view content, std::uint32_t permissions) = 0;

  /// Opens an existing regular file for writing from its start. Does not truncate it and does not follow a link.
  virtual Result<std::unique_ptr<WritableFile>> openForWriting(const std::string& path) = 0;

  /// Creates the folder with exactly these permissions, and missing parents with default ones. Succeeds without a
  /// change when the folder exists. A failure may leave some parents behind.
  virtual Status createDirectory(const std::string& path, std::uint32_t permissions) = 0;

  /// Sets attributes of the item; a link stays as it is. Root changes only what is the user's. May set some and fail at
  /// another.
  virtual Status setAttributes(const std::string& path, const OwnershipAndMode& attributes) = 0;

  /// Removes the item with everything below it. Removes links, not their targets. Not atomic: a failure may leave part
  /// of a folder's content.
  virtual Status removeItem(const std::string& path) = 0;

  /// Returns the sizes of the item and everything below it. Fails when part of it cannot be read.
  virtual Result<TreeSize> sizeOfItem(const std::string& path) const = 0;

  /// Returns the free space for an item at the path, whose folder need not exist.
  virtual Result<DiskSpace> spaceFor(const std::string& path) const = 0;

  /// Whether a copy from `source` to `target` may share blocks and need no space.
  [[nodiscard]] virtual bool mayShareBlocks(const std::string& source, const std::string& target) const = 0;

  /// What could not be looked at so far, for another reason than that there is nothing: whoever asked took it for
  /// missing. Stays when a later look succeeds. A walk with a handler for this tells the handler instead.
  [[nodiscard]] virtual std::vector<Error> unreadable() const = 0;
  virtual void forgetUnreadable() = 0;

  /// Whether items could be installed into the folder, which need not exist, with administrator rights where those
  /// reach.
  virtual Status checkTargetFolder(const std::string& path) const = 0;
  /// Whether the item could be removed with such rights. Looks at everything below it.
  virtual Status checkReplaceable(const std::string& path) const = 0;

  /// Compares an installed item, and everything below it, with what it was installed from: content, types, links,
  /// owners, permissions and extended attributes other than the download-quarantine mark, which comes and goes. Fails
  /// when the source cannot be read.
  virtual Status compareItem(const std::string& source, const std::string& target,
                             const ItemComparison& comparison) const = 0;

  /// Takes the lock of the volume. Fails with device_or_resource_busy when another installer holds it. A process holds
  /// at most one lock at a time.
  virtual Result<std::unique_ptr<VolumeLock>> tryLock() = 0;
};

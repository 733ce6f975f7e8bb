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

struct ItemAttributes {
  ItemType type = ItemType::other;
  std::uint64_t size = 0;                    ///< in bytes
  std::uint32_t permissions = 0;             ///< the permission bits, 0 to 07777
  std::int64_t modificationNanoseconds = 0;  ///< since 1970-01-01 00:00 UTC
};

/// What to set on an item; what is empty stays as it is.
struct OwnershipAndMode {
  std::optional<std::string> owner = std::nullopt;  ///< short name of a user
  std::optional<std::string> group = std::nullopt;  ///< name of a group
  std::optional<std::uint32_t> permissions = std::nullopt;
};

/// An item met on a walk through a folder.
struct WalkedItem {
  std::string path;
  ItemType type = ItemType::other;
  bool isPackage = false;  ///< a folder that people see as one item: an application, a plug-in, a bundle
};

/// A file open for writing at its start. Closing it is its end of life.
class WritableFile {
 public:
  WritableFile() = default;
  WritableFile(const WritableFile&) = delete;
  WritableFile& operator=(const WritableFile&) = delete;
  virtual ~WritableFile() = default;

  /// Writes all of it or throws Exception with the reason; part of it may then have been written.
  virtual void writeData(std::string_view data) = 0;
};

struct PlannedCopy {
  std::string source;
  std::string target;
};

/// Copies that are going to be asked for. The plan holds as long as this object, which must not outlive its file
/// system.
class CopyPlan {
 public:
  CopyPlan() = default;
  CopyPlan(const CopyPlan&) = delete;
  CopyPlan& operator=(const CopyPlan&) = delete;
  virtual ~CopyPlan() = default;
};

/// The disk. Paths are those of the target volume, or lie inside the installer's own bundle, which is never changed: a
/// change below it fails with read_only_file_system. Links on the way to an item are followed inside the target volume
/// and never lead out of it. A path that does not start with "/" leads nowhere.
///
/// Changes are made with the rights of this process. Files and folders that it creates belong to the logged-in user and
/// to the group of the folder that they are in, also when it runs as root; a copy belongs to whom the process runs as.
class FileSystem {
 public:
  FileSystem() = default;
  FileSystem(const FileSystem&) = delete;
  FileSystem& operator=(const FileSystem&) = delete;
  virtual ~FileSystem() = default;

  /// Whether the path leads to an item. A link that leads nowhere is none.
  [[nodiscard]] virtual bool exists(const std::string& path) const = 0;

  /// Whether the name is taken: by an item, or by a link, wherever it leads.
  [[nodiscard]] virtual bool isTaken(const std::string& path) const = 0;

  /// Of the item itself; a link is not followed.
  virtual Result<ItemAttributes> attributesOfItem(const std::string& path) const = 0;

  /// Names of the direct entries, hidden ones included, in ascending byte order.
  virtual Result<std::vector<std::string>> contentsOfDirectory(const std::string& path) const = 0;

  /// Visits everything below the folder except hidden items and what lies in packages: a folder before its content,
  /// entries in ascending byte order. Links are visited, not followed. What cannot be read is passed over. The visitor
  /// may change the folder's content.
  virtual void walk(const std::string& folder, const std::function<void(const WalkedItem&)>& visit) const = 0;

  /// The direct entries as walk() shows them.
  [[nodiscard]] virtual std::vector<WalkedItem> visibleEntries(const std::string& folder) const = 0;

  /// The bytes of a regular file, at most `limit` of them from its start. Never waits for a writer.
  virtual Result<std::string> readFile(const std::string& path, std::size_t limit) const = 0;

  /// Makes the file with this content, all of it or none: the name changes over to a complete file. Replaces a file or
  /// a link of that name; fails when a folder has it.
  virtual Status createFile(const std::string& path, std::string_view content, std::uint32_t permissions) = 0;

  /// Opens an existing regular file to be written from its start; what is in it stays until it is overwritten. A link
  /// is none.
  virtual Result<std::unique_ptr<WritableFile>> openForWriting(const std::string& path) = 0;

  /// Makes the folder with exactly these permissions, and the missing folders above it with the usual ones. Succeeds
  /// when it is there already, which changes nothing. A failure may leave some of the folders above.
  virtual Status createDirectory(const std::string& path, std::uint32_t permissions) = 0;

  /// Of the item itself; on a link the permissions are left alone. May set some and fail at another.
  virtual Status setAttributes(const std::string& path, const OwnershipAndMode& attributes) = 0;

  /// Removes the item with everything below it; a link itself, never what it leads to. Not atomic: when it fails, part
  /// of a folder's content may be gone.
  virtual Status removeItem(const std::string& path) = 0;

  /// Copies an item with everything below it to a name that is free: permissions, modification times, extended
  /// attributes and holes in files are kept, links are copied as links. All or nothing: the copy is built under a
  /// hidden name beside the target and renamed when it is complete, so that neither a failure nor the end of this
  /// process leaves half of it under the target's name. Fails with file_exists when the name is taken.
  virtual Status copyItem(const std::string& source, const std::string& target) = 0;

  /// copyItem() to a name that is taken, by whatever kind of item. At every moment the target is the whole old item or
  /// the whole new one; after a failure it is the old one. Fails with permission_denied or operation_not_permitted when
  /// this process may not remove the old item.
  virtual Status replaceItem(const std::string& source, const std::string& target) = 0;

  /// Bytes of content copied so far, at their turn or ahead of it.
  [[nodiscard]] virtual std::uint64_t bytesCopied() const = 0;

  /// Bytes of content of the item and of everything below it, of what can be read.
  [[nodiscard]] virtual std::uint64_t sizeOfItem(const std::string& path) const = 0;

  /// Has `handler` called on this thread every few hundredths of a second while copyItem(), replaceItem() or
  /// removeItem() take longer than that; an empty one ends it. The handler may ask for anything but changes.
  virtual void setWhileBusy(std::function<void()> handler) = 0;

  /// Says which copies copyItem() and replaceItem() are about to be asked for, in this order; some may be left out. The
  /// file system may then build them ahead of their turn, under their hidden names. Only that makes a difference: what
  /// a copy that is asked for does, and how it fails, is the same with and without a plan, and one that is not asked
  /// for leaves nothing behind.
  [[nodiscard]] virtual std::unique_ptr<CopyPlan> planCopies(std::vector<PlannedCopy> copies) = 0;
};

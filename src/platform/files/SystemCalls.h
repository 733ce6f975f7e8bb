// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <system_error>

#include "foundation/Result.h"
#include "platform/FileSystem.h"
#include "platform/posix/FileDescriptor.h"

// What Linux and macOS both can do, each with calls of its own. Results are 0 or an errno value unless stated.

[[nodiscard]] inline bool isSameItem(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

/// Opens a folder as a starting point for other calls; needs only the right to search it.
[[nodiscard]] FileDescriptor openFolderHandle(int folder, const char* name, bool followLink);

/// Copies an open regular file to a free name in one step, with its extended attributes and modes, as a file of this
/// process's user that is not locked, so that both share all blocks. Without the download-quarantine mark when
/// `losesQuarantine`. Fails where the file system cannot; when the name is taken after that, it is an unfinished clone.
[[nodiscard]] int cloneFile(int source, int targetFolder, const char* name, bool losesQuarantine);

/// Copies `length` bytes at `offset` of one open file to the same place in another. Shares the blocks where the file
/// system can. EIO when the source is shorter.
[[nodiscard]] int copyFileRange(int source, int target, std::int64_t offset, std::int64_t length);

/// The same by reading and writing, on every file system.
[[nodiscard]] int copyByHand(int source, int target, std::int64_t offset, std::int64_t length);

/// The attribute of what has been downloaded. A volume's file system may put a word and a full stop before it.
inline constexpr std::string_view quarantineMark = "com.apple.quarantine";

/// Copies the extended attributes of one open item to another, without the download-quarantine mark when
/// `losesQuarantine`. Succeeds when either side supports none.
[[nodiscard]] int copyExtendedAttributes(int source, int target, bool losesQuarantine);

/// The extended attributes of an open item that belong to its content, by name. None where the file system has no such
/// thing.
Result<std::map<std::string, std::string>> extendedAttributes(int item);

// Single extended attributes of an open item, for the two above. Reading gives the length, or -1 and errno; a size of 0
// asks for the length only.

[[nodiscard]] ssize_t listAttributes(int item, char* names, std::size_t size);
[[nodiscard]] ssize_t readAttribute(int item, const char* name, char* value, std::size_t size);
[[nodiscard]] int writeAttribute(int item, const char* name, const char* value, std::size_t size);

/// Whether the attribute belongs to the content of an item, and not to the system.
[[nodiscard]] bool isOfContent(std::string_view attribute);

/// Exchanges two items in one step. See isMissingOperation().
[[nodiscard]] int exchangeItems(int folder, const char* name, int otherFolder, const char* otherName);

/// Renames unless the new name is taken (EEXIST). See isMissingOperation().
[[nodiscard]] int renameToFreeName(int folder, const char* name, int newFolder, const char* newName);

/// Whether the error of the two calls above means that the file system lacks the operation.
[[nodiscard]] bool isMissingOperation(int error);

/// A mounted file system: names in one can be exchanged with names in the same one only.
struct MountedFileSystem {
  std::uint64_t device = 0;
  std::uint64_t mount = 0;
  [[nodiscard]] bool operator==(const MountedFileSystem&) const = default;
};
Result<MountedFileSystem> fileSystemOf(int item);

/// Whether a copy between the two open items may share blocks and need no space.
[[nodiscard]] bool mayShareBlocks(int item, int otherItem);

/// Bytes that this process may still write to the file system of the item.
Result<std::uint64_t> availableSpace(int item);

/// Writes everything that the file system of the item holds in memory to the medium. The item must be open for reading.
[[nodiscard]] int flushFileSystem(int item);

/// Whether the item is marked as immutable or append-only, so that not even root can remove it.
[[nodiscard]] bool isImmutable(int folder, const char* name);

/// What a person can do when the system itself protects the item from being changed, although its owner and mode allow
/// it; empty when it does not.
[[nodiscard]] std::string_view protectionOf(std::string_view path);

/// The mode bit with which what is created in a folder belongs to the folder's group; 0 where it always does, and where
/// only the group's members may set the bit.
#ifdef __APPLE__
inline constexpr mode_t groupPassingBit = 0;
#else
inline constexpr mode_t groupPassingBit = S_ISGID;
#endif

/// Modification time of the item.
[[nodiscard]] inline timespec modificationTime(const struct stat& status) {
#ifdef __APPLE__
  return status.st_mtimespec;
#else
  return status.st_mtim;
#endif
}

[[nodiscard]] inline ItemType itemType(const struct stat& status) {
  if (S_ISREG(status.st_mode)) return ItemType::regularFile;
  if (S_ISDIR(status.st_mode)) return ItemType::folder;
  return S_ISLNK(status.st_mode) ? ItemType::symbolicLink : ItemType::other;
}

/// errno as an Error about `subject`.
[[nodiscard]] inline Error systemError(int number, std::string_view subject) {
  return Error::posix(static_cast<std::errc>(number), subject);
}

/// Success for 0, else the errno value as an Error about `subject`.
[[nodiscard]] inline Status systemStatus(int number, std::string_view subject) {
  if (number == 0) return {};
  return systemError(number, subject);
}

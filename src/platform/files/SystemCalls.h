#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstdint>
#include <string>
#include <system_error>

#include "foundation/Result.h"
#include "platform/FileSystem.h"
#include "platform/posix/FileDescriptor.h"

// What Linux and macOS both can, each in its own words. Results are 0 or an errno value unless stated.

/// Opens a folder as a starting point for other calls; needs only the right to search it.
[[nodiscard]] FileDescriptor openFolderHandle(int folder, const char* name, bool followLink);

/// Copies `length` bytes at `offset` of one open file to the same place in another. EIO when the source is shorter.
[[nodiscard]] int copyFileRange(int source, int target, std::int64_t offset, std::int64_t length);

/// Copies the extended attributes of one open item to another. Succeeds when either side has no such thing.
[[nodiscard]] int copyExtendedAttributes(int source, int target);

/// Lets two items change names in one step. EINVAL or ENOSYS when the file system cannot.
[[nodiscard]] int exchangeItems(int folder, const char* name, const char* otherName);

/// Renames unless the new name is taken (EEXIST).
[[nodiscard]] int renameToFreeName(int folder, const char* name, const char* newName);

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

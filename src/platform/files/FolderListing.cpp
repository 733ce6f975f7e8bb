// SPDX-License-Identifier: Apache-2.0

#include "platform/files/FolderListing.h"

#include <dirent.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>

#include "platform/files/SystemCalls.h"
#include "platform/posix/FileDescriptor.h"

namespace {

std::optional<ItemType> entryType(int folder, const dirent& entry) {
  switch (entry.d_type) {
    case DT_REG: return ItemType::regularFile;
    case DT_DIR: return ItemType::folder;
    case DT_LNK: return ItemType::symbolicLink;
    case DT_UNKNOWN: break;
    default: return ItemType::other;
  }
  struct stat status {};
  if (::fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) return std::nullopt;
  return itemType(status);
}

}  // namespace

std::optional<std::string> readLink(int folder, const std::string& name) {
  std::array<char, PATH_MAX> target{};
  const ssize_t length = ::readlinkat(folder, name.c_str(), target.data(), target.size());
  if (length < 0) return std::nullopt;
  return std::string(target.data(), static_cast<std::size_t>(length));
}

Result<std::vector<FolderEntry>> listFolder(int folder, Order order) {
  // A descriptor of its own: reading moves the place in the folder, which the caller's descriptor would share with a
  // copy.
  FileDescriptor own(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!own) return systemError(errno, "");
  const auto close = [](DIR* stream) { ::closedir(stream); };
  const std::unique_ptr<DIR, decltype(close)> stream(::fdopendir(own.get()), close);
  if (stream == nullptr) return systemError(errno, "");
  static_cast<void>(own.release());

  std::vector<FolderEntry> entries;
  for (;;) {
    errno = 0;
    const dirent* const entry = ::readdir(stream.get());
    if (entry == nullptr) break;
    const std::string_view name = entry->d_name;
    if (name == "." || name == "..") continue;
    if (const auto type = entryType(folder, *entry)) {
      entries.push_back({std::string(name), *type});
    } else if (errno != ENOENT) {
      return systemError(errno, "");
    }
  }
  if (errno != 0) return systemError(errno, "");
  if (order == Order::byName) std::ranges::sort(entries, {}, &FolderEntry::name);
  return entries;
}

// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "foundation/Path.h"
#include "platform/files/FolderListing.h"
#include "platform/files/PosixFileSystem.h"
#include "platform/files/SystemCalls.h"
#include "platform/files/TargetFolder.h"
#include "platform/files/TreeComparison.h"
#include "platform/files/TreeRemoval.h"

// What an install needs and meets, and what has become of it.

namespace {

using LastLink = Volume::LastLink;
using Purpose = Volume::Purpose;

Status addSizes(int folder, const std::string& name, TreeSize& size) {
  struct stat status {};
  if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return systemError(errno, name);
  constexpr std::uint64_t block = 4096;
  size.allocated += block;  // the entry and what the file system notes of the item
  if (S_ISREG(status.st_mode)) {
    const auto bytes = static_cast<std::uint64_t>(status.st_size);
    const auto inBlocks = static_cast<std::uint64_t>(status.st_blocks) * 512;
    size.bytes += bytes;
    size.allocated += (std::min(bytes, inBlocks) + block - 1) / block * block;
    ++size.files;
  }
  if (!S_ISDIR(status.st_mode)) return {};
  const FileDescriptor inner(::openat(folder, name.c_str(), folderToRead | O_NOFOLLOW));
  if (!inner) return systemError(errno, name);
  const auto entries = listFolder(inner.get());
  if (!entries) return systemError(entries.error().code, name);
  for (const FolderEntry& entry : *entries) {
    if (Status added = addSizes(inner.get(), entry.name, size); !added) return added;
  }
  return {};
}

}  // namespace

Result<TreeSize> PosixFileSystem::sizeOfItem(const std::string& path) const {
  const auto place = volume_.find(path, LastLink::keep, Purpose::look);
  if (!place) return place.error();
  TreeSize size;
  if (Status added = addSizes(place->folder.get(), place->name, size); !added) return added.error();
  return size;
}

Result<FileDescriptor> PosixFileSystem::openNearestFolder(const std::string& path) const {
  for (std::string folder = deletingLastPathComponent(path);; folder = deletingLastPathComponent(folder)) {
    auto opened = open(folder, folderToRead, Purpose::look);
    const bool goesUp = !opened && opened.error().is(std::errc::no_such_file_or_directory) && folder.size() > 1;
    if (!goesUp) return opened;
  }
}

Result<DiskSpace> PosixFileSystem::spaceFor(const std::string& path) const {
  const auto folder = openNearestFolder(path);
  if (!folder) return folder.error();
  struct stat itself {};
  const auto available = availableSpace(folder->get());
  if (!available || ::fstat(folder->get(), &itself) != 0) return systemError(errno, path);
  return DiskSpace{.fileSystem = static_cast<std::uint64_t>(itself.st_dev), .available = *available};
}

bool PosixFileSystem::mayShareBlocks(const std::string& source, const std::string& target) const {
  const auto from = openNearestFolder(source);
  const auto to = openNearestFolder(target);
  return from && to && ::mayShareBlocks(from->get(), to->get());
}

// What an install would meet.

Status PosixFileSystem::checkTargetFolder(const std::string& path) const {
  const auto found = findTargetFolder(volume_, path, covers_);
  return found ? Status() : Status(found.error());
}

Status PosixFileSystem::checkReplaceable(const std::string& path) const {
  const auto place = volume_.find(path, LastLink::keep, Purpose::change);
  return place ? checkRemovable(place->folder.get(), place->name, !covers_(place->resolved)) : Status(place.error());
}

Status PosixFileSystem::compareItem(const std::string& source, const std::string& target,
                                    const ItemComparison& comparison) const {
  const auto from = volume_.find(source, LastLink::keep, Purpose::look);
  if (!from) return from.error();
  const UserAccount& account = user_.account();
  const ItemOwner owner =
      comparison.owner.value_or(ItemOwner{account.id, groupNumber("admin").value_or(account.group)});
  const auto to = volume_.find(target, LastLink::keep, Purpose::look);
  if (to) return compareTrees(*from, *to, target, owner, comparison);
  const bool isMissing = to.error().is(std::errc::no_such_file_or_directory) ||
                         to.error().is(std::errc::not_a_directory) ||
                         to.error().is(std::errc::too_many_symbolic_link_levels);
  static_cast<void>(comparison.differs(
      {.kind = isMissing ? ItemDifference::Kind::missing : ItemDifference::Kind::unreadable, .path = target}));
  return {};
}

// SPDX-License-Identifier: Apache-2.0

// Files: a Mac's records of files, of file systems and of what a folder holds.
#include <dirent.h>
#include <sys/stat.h>
#include <sys/statfs.h>

#include <cstring>

#include "Names.h"

namespace {

struct MacStatus {
  std::int32_t device;
  std::uint16_t mode;
  std::uint16_t links;
  std::uint64_t number;
  std::uint32_t user;
  std::uint32_t group;
  std::int32_t specialDevice;
  timespec accessed, modified, changed, made;
  std::int64_t size;
  std::int64_t blocks;
  std::int32_t blockSize;
  std::uint32_t flags, generation;
  std::int32_t spare;
  std::int64_t spares[2];
};
static_assert(sizeof(MacStatus) == 144);

int toMac(int result, const struct stat& from, MacStatus* to) {
  if (result != 0) return result;
  *to = {};
  to->device = static_cast<std::int32_t>(from.st_dev);
  to->mode = static_cast<std::uint16_t>(from.st_mode);
  to->links = static_cast<std::uint16_t>(from.st_nlink);
  to->number = from.st_ino;
  to->user = from.st_uid;
  to->group = from.st_gid;
  to->specialDevice = static_cast<std::int32_t>(from.st_rdev);
  to->accessed = from.st_atim;
  to->modified = from.st_mtim;
  to->changed = from.st_ctim;
  to->made = from.st_ctim;
  to->size = from.st_size;
  to->blocks = from.st_blocks;
  to->blockSize = static_cast<std::int32_t>(from.st_blksize);
  return 0;
}

int macStat(const char* path, MacStatus* to) {
  struct stat status {};
  const int result = ::stat(path, &status);
  return toMac(result, status, to);
}

int macLstat(const char* path, MacStatus* to) {
  struct stat status {};
  const int result = ::lstat(path, &status);
  return toMac(result, status, to);
}

int macFstat(int file, MacStatus* to) {
  struct stat status {};
  const int result = ::fstat(file, &status);
  return toMac(result, status, to);
}

int macFstatat(int folder, const char* name, MacStatus* to, int flags) {
  struct stat status {};
  const int result = ::fstatat(folderFromMac(folder), name, &status, atFlagsFromMac(flags));
  return toMac(result, status, to);
}

struct MacFileSystem {
  std::uint32_t blockSize;
  std::int32_t transferSize;
  std::uint64_t blocks, freeBlocks, availableBlocks, files, freeFiles;
  std::int32_t number[2];
  std::uint32_t owner, type, flags, subtype;
  char typeName[16];
  char mountedOn[1024];
  char mountedFrom[1024];
  std::uint32_t moreFlags;
  std::uint32_t reserved[7];
};
static_assert(sizeof(MacFileSystem) == 2168);

/// Says that every file system is the Mac's own.
int macFstatfs(int file, MacFileSystem* to) {
  struct statfs status {};
  if (::fstatfs(file, &status) != 0) return -1;
  *to = {};
  to->blockSize = static_cast<std::uint32_t>(status.f_bsize);
  to->blocks = status.f_blocks;
  to->freeBlocks = status.f_bfree;
  to->availableBlocks = status.f_bavail;
  std::memcpy(to->number, &status.f_fsid, sizeof to->number);
  std::strcpy(to->typeName, "apfs");
  return 0;
}

struct MacEntry {
  std::uint64_t number;
  std::uint64_t position;
  std::uint16_t recordLength;
  std::uint16_t nameLength;
  std::uint8_t type;
  char name[1024];
};

MacEntry* macReaddir(DIR* folder) {
  thread_local MacEntry entry;
  const dirent* const found = ::readdir(folder);
  if (found == nullptr) return nullptr;
  entry = {};
  entry.number = found->d_ino;
  entry.type = found->d_type;
  entry.nameLength = static_cast<std::uint16_t>(std::strlen(found->d_name));
  std::memcpy(entry.name, found->d_name, entry.nameLength);
  return &entry;
}

}  // namespace

std::vector<Name> namesOfFileRecords() {
  return {function("_stat", &macStat),       function("_lstat", &macLstat),       function("_fstat", &macFstat),
          function("_fstatat", &macFstatat), function("_fstatfs", &macFstatfs),   function("_readdir", &macReaddir),
          function("_opendir", &::opendir),  function("_fdopendir", &::fdopendir)};
}

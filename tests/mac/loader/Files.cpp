// SPDX-License-Identifier: Apache-2.0

// Files: a Mac's flags and records.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <string>
#include <utility>

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

int atFlagsFromMac(int flags) {
  int here = 0;
  if ((flags & 0x20) != 0) here |= AT_SYMLINK_NOFOLLOW;
  if ((flags & 0x40) != 0) here |= AT_SYMLINK_FOLLOW;
  if ((flags & 0x80) != 0) here |= AT_REMOVEDIR;
  return here;
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

int macOpenat(int folder, const char* name, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const int mode = va_arg(rest, int);
  va_end(rest);
  constexpr int isNew = O_CREAT | O_EXCL;
  const int here = openFlagsFromMac(flags);
  const int file = ::openat(folderFromMac(folder), name, here, mode);
  if (file >= 0 && (here & isNew) == isNew) giveGroupOfFolder(folderFromMac(folder), name);
  return file;
}

int macMkdirat(int folder, const char* name, std::uint16_t mode) {
  const int result = ::mkdirat(folderFromMac(folder), name, mode);
  if (result == 0) giveGroupOfFolder(folderFromMac(folder), name);
  return result;
}

int macSymlinkat(const char* target, int folder, const char* name) {
  const int result = ::symlinkat(target, folderFromMac(folder), name);
  if (result == 0) giveGroupOfFolder(folderFromMac(folder), name);
  return result;
}

int macOpen(const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const int mode = va_arg(rest, int);
  va_end(rest);
  return ::open(path, openFlagsFromMac(flags), mode);
}

/// The path of an open item, for whose buffer a Mac wants 1024 bytes.
int writePath(int file, char* path) {
  constexpr std::size_t size = 1024;
  const ssize_t length = ::readlink(("/proc/self/fd/" + std::to_string(file)).c_str(), path, size - 1);
  if (length < 0) return -1;
  path[length] = '\0';
  return 0;
}

int macFcntl(int file, int command, long argument) {
  constexpr int path = 50;
  constexpr int fullFlush = 51;
  constexpr int duplicateClosingOnExec = 67;
  if (command == path) return writePath(file, reinterpret_cast<char*>(argument));
  if (command == fullFlush) return ::fsync(file);
  if (command == duplicateClosingOnExec) return ::fcntl(file, F_DUPFD_CLOEXEC, argument);
  if (command == F_SETFL) return ::fcntl(file, F_SETFL, openFlagsFromMac(static_cast<int>(argument)));
  if (command >= F_DUPFD && command <= F_SETFD) return ::fcntl(file, command, argument);
  errno = EINVAL;
  return -1;
}

/// The two ways of looking for holes have each other's number.
off_t macLseek(int file, off_t offset, int from) {
  return ::lseek(file, offset, from == 3 ? SEEK_HOLE : from == 4 ? SEEK_DATA : from);
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

int flushVolume(int file, int /*flags*/) { return ::syncfs(file); }

int macFaccessat(int folder, const char* name, int mode, int flags) {
  return ::faccessat(folderFromMac(folder), name, mode, (flags & 0x10) != 0 ? AT_EACCESS : 0);
}

int macUnlinkat(int folder, const char* name, int flags) {
  return ::unlinkat(folderFromMac(folder), name, atFlagsFromMac(flags));
}

int macFchownat(int folder, const char* name, uid_t user, gid_t group, int flags) {
  return ::fchownat(folderFromMac(folder), name, user, group, atFlagsFromMac(flags));
}

int macFchmodat(int folder, const char* name, std::uint16_t mode, int flags) {
  return ::fchmodat(folderFromMac(folder), name, mode, atFlagsFromMac(flags));
}

int macMknod(const char* path, std::uint16_t mode, std::int32_t device) {
  return ::mknod(path, mode, static_cast<dev_t>(device));
}

struct Times {
  explicit Times(const timespec* from) : given{from[0], from[1]} {
    for (timespec& time : given) {
      if (time.tv_nsec == -1) time.tv_nsec = UTIME_NOW;
      if (time.tv_nsec == -2) time.tv_nsec = UTIME_OMIT;
    }
  }
  std::array<timespec, 2> given;
};

int macUtimensat(int folder, const char* name, const timespec* times, int flags) {
  return ::utimensat(folderFromMac(folder), name, Times(times).given.data(), atFlagsFromMac(flags));
}

int macFutimens(int file, const timespec* times) { return ::futimens(file, Times(times).given.data()); }

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

void giveGroupOfFolder(int folder, const char* name) {
  struct stat holding {};
  if (std::strchr(name, '/') != nullptr || ::fstatat(folder, ".", &holding, 0) != 0) return;
  // Who is not of the group, a Mac does not ask.
  static_cast<void>(::fchownat(folder, name, static_cast<uid_t>(-1), holding.st_gid, AT_SYMLINK_NOFOLLOW));
}

int folderFromMac(int folder) { return folder == -2 ? AT_FDCWD : folder; }

int openFlagsFromMac(int flags) {
  constexpr std::pair<int, int> bits[] = {{0x4, O_NONBLOCK},       {0x8, O_APPEND},       {0x100, O_NOFOLLOW},
                                          {0x200, O_CREAT},        {0x400, O_TRUNC},      {0x800, O_EXCL},
                                          {0x100000, O_DIRECTORY}, {0x1000000, O_CLOEXEC}};
  constexpr int search = 0x40100000;
  int here = flags & O_ACCMODE;
  for (const auto& [mac, bit] : bits) {
    if ((flags & mac) != 0) here |= bit;
  }
  if ((flags & search) == search) here = (here & ~O_ACCMODE) | O_PATH;
  return here;
}

std::vector<Name> namesOfFiles() {
  return {function("_stat", &macStat),          function("_lstat", &macLstat),
          function("_fstat", &macFstat),        function("_fstatat", &macFstatat),
          function("_open", &macOpen),          function("_openat", &macOpenat),
          function("_fcntl", &macFcntl),        function("_faccessat", &macFaccessat),
          function("_unlinkat", &macUnlinkat),  function("_fchownat", &macFchownat),
          function("_fchmodat", &macFchmodat),  function("_utimensat", &macUtimensat),
          function("_futimens", &macFutimens),  function("_readdir", &macReaddir),
          function("_opendir", &::opendir),     function("_fdopendir", &::fdopendir),
          function("_realpath", &::realpath),   function("_lseek", &macLseek),
          function("_fstatfs", &macFstatfs),    function("_fsync_volume_np", &flushVolume),
          function("_mknod", &macMknod),        function("_mkdirat", &macMkdirat),
          function("_symlinkat", &macSymlinkat)};
}

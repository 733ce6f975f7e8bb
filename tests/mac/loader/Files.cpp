// SPDX-License-Identifier: Apache-2.0

// Files: a Mac's flags.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include "Names.h"

namespace {

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

}  // namespace

void giveGroupOfFolder(int folder, const char* name) {
  struct stat holding {};
  if (std::strchr(name, '/') != nullptr || ::fstatat(folder, ".", &holding, 0) != 0) return;
  // Who is not of the group, a Mac does not ask.
  static_cast<void>(::fchownat(folder, name, static_cast<uid_t>(-1), holding.st_gid, AT_SYMLINK_NOFOLLOW));
}

int atFlagsFromMac(int flags) {
  int here = 0;
  if ((flags & 0x20) != 0) here |= AT_SYMLINK_NOFOLLOW;
  if ((flags & 0x40) != 0) here |= AT_SYMLINK_FOLLOW;
  if ((flags & 0x80) != 0) here |= AT_REMOVEDIR;
  return here;
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
  return {function("_open", &macOpen),          function("_openat", &macOpenat),
          function("_fcntl", &macFcntl),        function("_faccessat", &macFaccessat),
          function("_unlinkat", &macUnlinkat),  function("_fchownat", &macFchownat),
          function("_fchmodat", &macFchmodat),  function("_utimensat", &macUtimensat),
          function("_futimens", &macFutimens),  function("_realpath", &::realpath),
          function("_lseek", &macLseek),        function("_fsync_volume_np", &flushVolume),
          function("_mknod", &macMknod),        function("_mkdirat", &macMkdirat),
          function("_symlinkat", &macSymlinkat)};
}

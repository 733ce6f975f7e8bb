// SPDX-License-Identifier: Apache-2.0

// What a Mac has for copying and exchanging files.
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "Names.h"

namespace {

int macRenameatx(int folder, const char* name, int otherFolder, const char* otherName, unsigned flags) {
  constexpr unsigned swap = 2;
  constexpr unsigned exclusive = 4;
  const unsigned here = flags == swap ? RENAME_EXCHANGE : flags == exclusive ? RENAME_NOREPLACE : 0U;
  const long result =
      ::syscall(SYS_renameat2, folderFromMac(folder), name, folderFromMac(otherFolder), otherName, here);
  if (result != 0 && errno == EINVAL) errno = ENOTSUP;  // how a Mac's file system says that it cannot
  return static_cast<int>(result);
}

// Names of extended attributes are a user's own here, and have that before them.

std::string nameHere(const char* name) { return std::string("user.") + name; }

ssize_t listAttributes(int file, char* names, std::size_t size, int /*options*/) {
  std::array<char, 65536> all{};
  const ssize_t length = ::flistxattr(file, all.data(), all.size());
  if (length < 0) return -1;
  std::string given;
  for (const char* name = all.data(); name < all.data() + length; name += std::strlen(name) + 1) {
    if (std::string(name).starts_with("user.")) given.append(name + 5).push_back('\0');
  }
  if (names != nullptr) std::memcpy(names, given.data(), std::min(size, given.size()));
  return std::ssize(given);
}
ssize_t readAttribute(int file, const char* name, void* value, std::size_t size, std::uint32_t /*position*/,
                      int /*options*/) {
  return ::fgetxattr(file, nameHere(name).c_str(), value, size);
}
int writeAttribute(int file, const char* name, const void* value, std::size_t size, std::uint32_t /*position*/,
                   int /*options*/) {
  return ::fsetxattr(file, nameHere(name).c_str(), value, size, 0);
}
int removeAttribute(int file, const char* name, int /*options*/) {
  return ::fremovexattr(file, nameHere(name).c_str());
}

int copyContent(int source, int target) {
  std::array<char, 65536> block{};
  for (off_t offset = 0;;) {
    const ssize_t got = ::pread(source, block.data(), block.size(), offset);
    if (got <= 0) return static_cast<int>(got);
    if (::write(target, block.data(), static_cast<std::size_t>(got)) != got) return -1;
    offset += got;
  }
}

void* makeCopyState() { return std::malloc(1); }
int freeCopyState(void* state) {
  std::free(state);
  return 0;
}

/// The content alone; for the C++ library.
int macFcopyfile(int source, int target, void* /*state*/, unsigned flags) {
  constexpr unsigned contentOnly = 8;
  if (flags == contentOnly) return copyContent(source, target);
  errno = ENOTSUP;
  return -1;
}

/// A copy, on one file system. MAC_CLONES=none in the environment: no file system can clone.
int macClone(int source, int folder, const char* name, unsigned /*flags*/) {
  struct stat from {};
  struct stat to {};
  if (::fstat(source, &from) != 0 || ::fstatat(folderFromMac(folder), ".", &to, 0) != 0) return -1;
  const char* const clones = std::getenv("MAC_CLONES");
  if (clones != nullptr || from.st_dev != to.st_dev) {
    errno = clones != nullptr ? ENOTSUP : EXDEV;
    return -1;
  }
  const int target = ::openat(folderFromMac(folder), name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (target < 0) return -1;
  giveGroupOfFolder(folderFromMac(folder), name);
  int result = copyContent(source, target);
  std::array<char, 4096> names{};
  std::array<char, 4096> value{};
  const ssize_t length = listAttributes(source, names.data(), names.size(), 0);
  for (const char* attribute = names.data(); attribute < names.data() + length;
       attribute += std::strlen(attribute) + 1) {
    const ssize_t size = readAttribute(source, attribute, value.data(), value.size(), 0, 0);
    if (size < 0 || writeAttribute(target, attribute, value.data(), static_cast<std::size_t>(size), 0, 0) != 0)
      result = -1;
  }
  const std::array times = {from.st_atim, from.st_mtim};
  if (::fchmod(target, from.st_mode) != 0 || ::futimens(target, times.data()) != 0) result = -1;
  ::close(target);
  return result;
}

}  // namespace

std::vector<Name> namesOfCopying() {
  return {function("_renameatx_np", &macRenameatx),
          function("_fcopyfile", &macFcopyfile),
          function("_copyfile_state_alloc", &makeCopyState),
          function("_copyfile_state_free", &freeCopyState),
          function("_fclonefileat", &macClone),
          function("_flistxattr", &listAttributes),
          function("_fgetxattr", &readAttribute),
          function("_fsetxattr", &writeAttribute),
          function("_fremovexattr", &removeAttribute)};
}

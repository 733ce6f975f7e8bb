#include "platform/files/StagedCopy.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <utility>

#include "platform/files/SystemCalls.h"
#include "platform/files/TreeCopy.h"

std::string stagedName(std::string_view name, int attempt) {
  std::uint64_t hash = 14695981039346656037U;  // FNV-1a
  for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
  std::string digits;
  for (unsigned shift = 64; shift > 0; shift -= 4) digits += "0123456789abcdef"[(hash >> (shift - 4)) & 0xFU];
  return ".installing-" + digits + "-" + std::to_string(attempt);
}

bool freeStagedName(int folder, const std::string& name) {
  struct stat status {};
  if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return errno == ENOENT;
  const FileDescriptor item(::openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (item && ::flock(item.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return false;
  return static_cast<bool>(removeTree(folder, name));
}

namespace {

/// Exchanges in two steps, for file systems that have no one step. The old item then has the hidden name, or is gone.
int exchangeInTwoSteps(int folder, const std::string& fresh, const std::string& place) {
  if (::renameat(folder, fresh.c_str(), folder, place.c_str()) == 0) return 0;  // a file over a file
  const std::string aside = fresh + "-old";
  if (!freeStagedName(folder, aside)) return EBUSY;
  if (::renameat(folder, place.c_str(), folder, aside.c_str()) != 0) return errno;
  if (::renameat(folder, fresh.c_str(), folder, place.c_str()) != 0) {
    const int error = errno;
    static_cast<void>(::renameat(folder, aside.c_str(), folder, place.c_str()));
    return error;
  }
  return ::renameat(folder, aside.c_str(), folder, fresh.c_str()) != 0 ? errno : 0;
}

bool cannotDoThat(int error) { return error == EINVAL || error == ENOSYS; }

}  // namespace

Result<StagedCopy> StagedCopy::make(const Volume& volume, const std::string& source, const std::string& target,
                                    unsigned mostThreads, std::atomic<std::uint64_t>& bytes) {
  auto place = volume.find(target, Volume::LastLink::keep, Volume::Purpose::change);
  if (!place) return place.error();
  const auto from = volume.find(source, Volume::LastLink::keep, Volume::Purpose::look);
  if (!from) return from.error();
  const int folder = place->folder.get();
  for (int attempt = 0; attempt < mostStagedNames; ++attempt) {
    const std::string name = stagedName(place->name, attempt);
    if (!freeStagedName(folder, name)) continue;
    FileDescriptor lock;
    const Status copied = copyTree({from->folder.get(), from->name, folder, name}, mostThreads, bytes, lock);
    if (copied) return StagedCopy(std::move(*place), name, std::move(lock));
    if (copied.error().is(std::errc::file_exists)) continue;
    ignore(removeTree(folder, name));  // what is left of it goes with the next install
    return copied.error();
  }
  return Error::posix(std::errc::device_or_resource_busy, target);
}

StagedCopy::~StagedCopy() {
  if (place_.folder) ignore(removeTree(place_.folder.get(), name_));  // goes with the next install at the latest
}

bool StagedCopy::isFor(const Volume::Place& place) const {
  struct stat mine {};
  struct stat theirs {};
  return place.name == place_.name && ::fstat(place_.folder.get(), &mine) == 0 &&
         ::fstat(place.folder.get(), &theirs) == 0 && mine.st_dev == theirs.st_dev && mine.st_ino == theirs.st_ino;
}

Status StagedCopy::putInPlace() && {
  const int folder = place_.folder.get();
  int error = renameToFreeName(folder, name_.c_str(), place_.name.c_str());
  if (cannotDoThat(error)) {
    struct stat status {};
    error = ::fstatat(folder, place_.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 ? EEXIST : 0;
    if (error == 0 && ::renameat(folder, name_.c_str(), folder, place_.name.c_str()) != 0) error = errno;
  }
  if (error != 0) return systemError(error, place_.name);
  place_.folder.close();
  return {};
}

Status StagedCopy::exchangeWithOldItem() && {
  int error = exchangeItems(place_.folder.get(), name_.c_str(), place_.name.c_str());
  if (cannotDoThat(error)) error = exchangeInTwoSteps(place_.folder.get(), name_, place_.name);
  if (error != 0) return systemError(error, place_.name);
  return {};  // the hidden name is now the old item's, and goes with this object
}

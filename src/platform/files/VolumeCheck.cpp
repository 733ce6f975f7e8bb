// SPDX-License-Identifier: Apache-2.0

#include "platform/files/VolumeCheck.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/files/SystemCalls.h"
#include "platform/posix/ProcessSetUp.h"

namespace {

Status notAVolume(const std::string& shownPath, const std::string& why) {
  return Error{.domain = "NotAMacVolume",
               .userInfo = {{std::string(Error::localizedDescriptionKey),
                             "cannot install into \"" + shownPath + "\": it is not a Mac volume, because " + why}}};
}

}  // namespace

Status checkMacVolume(int folder, uid_t user, const std::string& shownPath) {
  for (const char* const name : {"Applications", "Library"}) {
    struct stat status {};
    const std::string quoted = "\"" + std::string(name) + "\"";
    if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISDIR(status.st_mode)) {
      return notAVolume(shownPath, "it has no folder " + quoted);
    }
    if (status.st_uid != 0 && status.st_uid != user) {
      return notAVolume(shownPath, "its folder " + quoted + " belongs neither to root nor to the user");
    }
  }
  return {};
}

Result<Volume> openMacVolume(const std::string& target, const std::string& bundlePath, uid_t user) {
  const auto unusable = [&](int number) { return systemError(number, "cannot install into \"" + target + "\""); };
  auto root = realPath(target);
  if (!root) return unusable(errno);
  FileDescriptor handle(::open(root->c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!handle || ::access(root->c_str(), X_OK) != 0) return unusable(errno);
  if (Status volume = checkMacVolume(handle.get(), user, target); !volume) return volume.error();
  return Volume(std::move(handle), *std::move(root), bundlePath);
}

#include "platform/files/VolumeCheck.h"

#include <fcntl.h>
#include <sys/stat.h>

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

// SPDX-License-Identifier: Apache-2.0

#include "platform/files/TargetFolder.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "foundation/Path.h"
#include "platform/files/SystemCalls.h"

Result<TargetFolder> findTargetFolder(const Volume& volume, const std::string& path, const Covers& covers) {
  std::string next = "item";  // what would be created first
  for (std::string folder = path;; folder = deletingLastPathComponent(folder)) {
    auto place = volume.find(folder, Volume::LastLink::follow, Volume::Purpose::change);
    FileDescriptor handle;
    if (place) handle = openFolderHandle(place->folder.get(), place->name.c_str(), /*followLink=*/false);
    if (handle) {
      const bool isWritable = ::faccessat(handle.get(), ".", W_OK | X_OK, AT_EACCESS) == 0;
      const bool isCovered = !isWritable && errno == EACCES && covers(joinPath(place->resolved, next));
      if (!isWritable && !isCovered) return systemError(errno, folder);
      return TargetFolder{std::move(*place), std::move(handle), folder != path};
    }
    const Error error = place ? systemError(errno, folder) : place.error();
    const bool isMissing = error.is(std::errc::no_such_file_or_directory);
    if (isMissing && volume.isDanglingLink(folder)) return Error::posix(std::errc::file_exists, folder);
    if (!isMissing || folder == "/" || folder.empty()) return error;
    next = lastPathComponent(folder);
  }
}

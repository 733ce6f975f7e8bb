// SPDX-License-Identifier: Apache-2.0

#include "platform/macos/MacLaunchServices.h"

#include <CoreServices/CoreServices.h>
#include <unistd.h>

#include "platform/macos/Reference.h"

std::int32_t MacLaunchServices::registerApplication(const std::string& path, bool update) {
  const auto place = volume_.realPath(path, Volume::LastLink::follow, Volume::Purpose::look);
  if (!place || ::access(place->c_str(), F_OK) != 0) return fnfErr;
  if (volume_.root() != "/") return noErr;
  const Reference<CFURLRef> url(::CFURLCreateFromFileSystemRepresentation(
      nullptr, bytesOf(*place), static_cast<CFIndex>(place->size()), /*isFolder=*/true));
  return url ? ::LSRegisterURL(url.get(), static_cast<Boolean>(update)) : fnfErr;
}

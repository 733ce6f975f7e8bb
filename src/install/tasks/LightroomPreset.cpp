// SPDX-License-Identifier: Apache-2.0

#include "install/tasks/LightroomPreset.h"

#include <cstddef>
#include <string_view>

#include "foundation/Path.h"
#include "install/DestinationFolders.h"
#include "payload/InstallerTexts.h"
#include "payload/PlugInFilesModel.h"

namespace {

constexpr std::size_t largestPreset = std::size_t{1} << 20U;

/// The preset without its identifier, which is another one each time.
std::string_view withoutIdentifier(std::string_view preset) {
  const std::size_t firstLine = preset.find('\n');
  return firstLine == std::string_view::npos ? std::string_view() : preset.substr(firstLine);
}

}  // namespace

std::string lightroomPresetFile(Platform& platform) {
  return joinPath(PlugInFilesModel(platform).lightRoomPresetDir(), productName(platform) + ".lrtemplate");
}

std::optional<std::string> installLightroomPreset(Platform& platform, PrivilegedTools& tools,
                                                  const LightRoomHostModel& lightroom, const std::string& application) {
  const std::string path = lightroomPresetFile(platform);
  const std::string preset = lightroom.templateFileTextWithAppName(application);
  const auto present = platform.files.readFile(path, largestPreset);
  if (present && withoutIdentifier(*present) == withoutIdentifier(preset)) return path;
  // Not a failure of the install: the application can be chosen in Lightroom by hand.
  const Status created = platform.files.createFile(path, preset, 0644);
  if (!created) {
    platform.log.write(created.error().description());
    return std::nullopt;
  }
  static_cast<void>(giveToUser(platform, tools, path));
  return path;
}

// SPDX-License-Identifier: Apache-2.0

#include "kit/NewBundle.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <system_error>

#include "foundation/Path.h"
#include "kit/InspectedBundle.h"
#include "kit/NewTexts.h"
#include "kit/TemplatePictures.h"

namespace {

constexpr std::uint32_t folderMode = 0755;
constexpr std::uint32_t fileMode = 0644;
constexpr std::uint32_t programMode = 0755;
constexpr std::uint32_t anybodyStarts = 0111;

constexpr std::array<std::string_view, 5> emptyParts = {"HD/Applications", "HD/Library/Application Support",
                                                        "PHOTOSHOP", "PHOTOSHOP_PLUGINS", "LIGHTROOM"};

/// Whether the file is the product's picture, of whichever type.
bool isOwnPicture(std::string_view path) {
  if (!isAtOrBelow(path, resourcesFolder)) return false;
  const std::string name = lastPathComponent(path);
  return std::ranges::any_of(templatePictures(), [&](const TemplatePicture& picture) {
    return name.substr(0, name.find('.')) == picture.name.substr(0, picture.name.find('.'));
  });
}

/// What is the product's and not the installer's.
bool isOfProduct(std::string_view path) {
  return isOwnPicture(path) || isAtOrBelow(path, ownPayloadFolder) || isAtOrBelow(path, "Contents/SharedSupport") ||
         isAtOrBelow(path, "Contents/_CodeSignature");
}

/// The content of a file of the new bundle.
Result<std::string> newContent(const InspectedBundle& bundle, const std::string& path) {
  const std::string name = lastPathComponent(path);
  if (path == settingsTable) return templateSettings();
  if (name == "license.txt") return templateLicence();
  auto bytes = bundle.read(path);
  if (!bytes) return Error::posix(std::errc::io_error, path);
  if (name == "Localizable.strings") return commentedTable(*bytes);
  return std::move(*bytes);
}

Status copyItem(const InspectedBundle& bundle, const TreeItem& item, const std::string& target) {
  FileSystem& files = bundle.platform().files;
  if (item.type == ItemType::folder) return files.createDirectory(target, folderMode);
  if (item.type != ItemType::regularFile) return {};
  const auto content = newContent(bundle, item.path);
  if (!content) return content.error();
  const bool isProgram = (item.permissions & anybodyStarts) != 0;
  return files.createFile(target, *content, isProgram ? programMode : fileMode);
}

}  // namespace

Status makeNewBundle(Platform& platform, const std::string& folder) {
  FileSystem& files = platform.files;
  if (files.isTaken(folder)) return Error::posix(std::errc::file_exists, folder);
  const InspectedBundle bundle(platform);
  const std::string app = joinPath(folder, "Installer.app");
  if (Status made = files.createDirectory(app, folderMode); !made) return made;
  for (const TreeItem& item : bundle.items()) {
    const bool isTableOfLanguage = lastPathComponent(item.path) == "installer.strings" && item.path != settingsTable;
    if (isOfProduct(item.path) || isTableOfLanguage || item.path.starts_with("..")) continue;
    if (Status copied = copyItem(bundle, item, joinPath(app, item.path)); !copied) return copied;
  }
  for (const std::string_view part : emptyParts) {
    if (Status made = files.createDirectory(joinPath({app, ownPayloadFolder, part}), folderMode); !made) return made;
  }
  for (const TemplatePicture& picture : templatePictures()) {
    const std::string file = joinPath({app, resourcesFolder, picture.name});
    if (Status made = files.createFile(file, picture.bytes, fileMode); !made) return made;
  }
  return files.createFile(joinPath(folder, "Read Me.txt"), instructions(), fileMode);
}

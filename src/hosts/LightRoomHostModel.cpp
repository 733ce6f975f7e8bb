// SPDX-License-Identifier: Apache-2.0

#include "hosts/LightRoomHostModel.h"

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "payload/InstallerTexts.h"
#include "payload/PlugInFilesModel.h"

namespace {

/// As it stands between quotes.
std::string quotable(std::string_view text) {
  std::string result;
  for (const char character : text) {
    if (character == '"' || character == '\\') result += '\\';
    result += character;
  }
  return result;
}

}  // namespace

std::shared_ptr<LightRoomHostModel> LightRoomHostModel::initWithHostName(Platform& platform, std::string name) {
  auto model = std::shared_ptr<LightRoomHostModel>(new LightRoomHostModel(platform, std::move(name)));
  model->hostIsInstalled_ = platform.files.exists(PlugInFilesModel(platform).lightRoomPresetDir());
  return model;
}

std::string LightRoomHostModel::templateFileTextWithAppName(std::string_view appName) const {
  // Lightroom runs this text: not a blank or a comma of it may change.
  constexpr std::string_view format =
      "s = {   id = \"%@\",\n"
      "  internalName = \"%@\",\n"
      "  title = \"%@\",\n"
      "  type = \"ExternalEditor\",\n"
      "  value = {\n"
      "  externalEditingFormat = \"%@\",\n"
      "  externalEditingFormat_dpi = 240,\n"
      "  externalEditorFullPath  = \"%@\",\n"
      "  },\n"
      "  version = 0,\n"
      "  }\n";
  const std::string product = quotable(shownProductName(platform_));
  return formatted(format, platform_.identifiers.makeUuid(), product, product, "TIFF_None_16_ProPhotoRGB",
                   quotable(joinPath(PlugInFilesModel(platform_).standAloneAppsInstallPath(), appName)));
}

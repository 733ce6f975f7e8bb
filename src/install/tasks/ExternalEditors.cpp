// SPDX-License-Identifier: Apache-2.0

#include "install/tasks/ExternalEditors.h"

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include "foundation/Path.h"
#include "hosts/PhotoshopHostModel.h"
#include "install/DestinationFolders.h"
#include "payload/Configuration.h"
#include "payload/InstallerTexts.h"
#include "payload/PlugInFilesModel.h"

namespace {

/// One editor of the list: fields joined by commas, with no quoting, as the editor that reads them wants it.
std::string editorLine(std::string_view appPath, std::string_view displayName, std::string_view perEditorValue) {
  std::string line;
  for (const std::string_view field :
       {appPath, displayName, perEditorValue, std::string_view("2"), std::string_view("1003"), std::string_view("100"),
        std::string_view("ORIGINAL")}) {
    line.append(field).append(",");
  }
  return line + " \n";
}

/// The host with the greatest version; of several the first, and none whose version is 0.
std::shared_ptr<PhotoshopHostModel> newestPhotoshop(const HostList& hosts) {
  std::shared_ptr<PhotoshopHostModel> newest;
  std::uint32_t greatest = 0;
  for (const auto& host : hosts) {
    auto photoshop = std::dynamic_pointer_cast<PhotoshopHostModel>(host);
    if (photoshop == nullptr || photoshop->photoshopVersionFromDisplayName() <= greatest) continue;
    greatest = photoshop->photoshopVersionFromDisplayName();
    newest = std::move(photoshop);
  }
  return newest;
}

/// The application's name without the maker's.
std::string shownName(const Platform& platform, const std::string& application) {
  std::string name = lastPathComponent(application);
  if (name.ends_with(".app")) name.erase(name.rfind('.'));
  const std::string maker = companyName(platform) + " ";
  return name.starts_with(maker) ? name.substr(maker.size()) : name;
}

}  // namespace

std::string externalEditorsList(Platform& platform) {
  const std::string editor = Configuration(platform).externalEditors();
  if (editor.empty()) return {};
  return joinPath(PlugInFilesModel(platform).appSupportPathForProduct(editor), "ExternalEditors.csv");
}

std::string externalEditorsText(const Platform& platform, const HostList& foundHosts,
                                const std::function<bool(const std::string& path)>& exists) {
  std::string text;
  if (const auto photoshop = newestPhotoshop(foundHosts)) {
    const std::string app = joinPath(photoshop->appPath(), lastPathComponent(photoshop->appPath()) + ".app");
    text += editorLine(app, photoshop->hostName(), "9");
  }
  for (const std::string& application : Configuration(platform).externalEditorApplications()) {
    if (exists(application)) text += editorLine(application, shownName(platform, application), "4");
  }
  return text;
}

std::optional<std::string> configureLumatraExternalEditors(Platform& platform, PrivilegedTools& tools,
                                                           const HostList& foundHosts) {
  const std::string list = externalEditorsList(platform);
  if (list.empty()) return std::nullopt;
  ensureDirExists(platform, tools, deletingLastPathComponent(list));
  if (tools.isDenied()) return std::nullopt;

  const std::string text =
      externalEditorsText(platform, foundHosts, [&](const std::string& path) { return platform.files.exists(path); });
  if (text.empty()) {
    // An old list would name editors that are gone. One that cannot be removed does no more harm than before.
    if (platform.files.isTaken(list)) ignore(platform.files.removeItem(list));
    return std::nullopt;
  }

  // Not a failure of the install: the editor goes on with the old list.
  const Status created = platform.files.createFile(list, text, 0644);
  if (!created) {
    platform.log.write(created.error().description());
    return std::nullopt;
  }
  static_cast<void>(giveToUser(platform, tools, list));
  return list;
}

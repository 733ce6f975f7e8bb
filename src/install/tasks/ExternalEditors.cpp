#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include "foundation/Path.h"
#include "hosts/PhotoshopHostModel.h"
#include "install/InstallFilesController.h"
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

}  // namespace

void InstallFilesController::configureLumatraExternalEditors() {
  const std::string folder = PlugInFilesModel(platform_).appSupportPathForProduct("Lumatra X");
  const std::string list = joinPath(folder, "ExternalEditors.csv");
  // One that cannot be removed is replaced further down, or stays when there is nothing to list.
  if (platform_.files.isTaken(list)) ignore(platform_.files.removeItem(list));
  ensureDirExists(folder);
  if (authDenied_) return;

  std::string text;
  // Without a window nobody knows the found hosts here, and the list has no Photoshop.
  if (mainController_ != nullptr) {
    if (const auto photoshop = newestPhotoshop(mainController_->foundHosts())) {
      const std::string app = joinPath(photoshop->appPath(), lastPathComponent(photoshop->appPath()) + ".app");
      text += editorLine(app, photoshop->hostName(), "9");
    }
  }
  constexpr const char* pelloria = "/Applications/Corvane Pelloria 4.app";
  if (platform_.files.exists(pelloria)) text += editorLine(pelloria, "Pelloria 4", "4");
  constexpr const char* dunmore = "/Library/Application Support/Corvane/Dunmore 3/Corvane Dunmore 3.app";
  if (platform_.files.exists(dunmore)) text += editorLine(dunmore, "Dunmore 3", "4");
  if (text.empty()) return;

  // Not worth failing an install for: without a list Lumatra X offers no editors, which is what it did before.
  const Status created = platform_.files.createFile(list, text, 0644);
  if (created) static_cast<void>(giveToUser(list));
  if (!created) platform_.log.write(created.error().description());
  installedPaths_.push_back(list);
}

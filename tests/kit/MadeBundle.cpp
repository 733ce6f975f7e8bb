// SPDX-License-Identifier: Apache-2.0

#include "kit/MadeBundle.h"

#include <stdexcept>

#include "foundation/Text.h"
#include "kit/CheckBundle.h"
#include "platform/SystemPlatform.h"

namespace {

std::string thin(unsigned processor, const MadeMachO& made) {
  std::string commands = bytesOf({0x32, 24, 1, made.minimumSystem << 16, made.minimumSystem << 16, 0}, false);
  if (made.isSigned) commands += bytesOf({0x1D, 16, 32, 16}, false);
  const auto size = static_cast<unsigned>(commands.size());
  return bytesOf({0xFEEDFACF, processor, 0, 8, made.isSigned ? 2U : 1U, size, 0, 0}, false) + commands;
}

}  // namespace

std::string machO(const MadeMachO& made) {
  std::vector<std::pair<unsigned, std::string>> parts;
  if (made.isForIntel) parts.emplace_back(0x01000007, thin(0x01000007, made));
  if (made.isForApple) parts.emplace_back(0x0100000C, thin(0x0100000C, made));
  if (parts.size() == 1) return parts.front().second;
  std::string head = bytesOf({0xCAFEBABE, static_cast<unsigned>(parts.size())}, true);
  std::string body;
  constexpr unsigned start = 64;
  for (const auto& [processor, part] : parts) {
    const auto offset = static_cast<unsigned>(start + body.size());
    head += bytesOf({processor, 0, offset, static_cast<unsigned>(part.size()), 0}, true);
    body += part;
  }
  head.resize(start);
  return head + body;
}

MadeBundle::MadeBundle() {
  const fs::path sample = fs::path(INSTALLER_BUNDLE) / "Contents";
  const auto all = fs::copy_options::recursive;
  fs::create_directories(at(""));
  fs::copy_file(sample / "Info.plist", at("../Info.plist"));
  for (const auto& entry : fs::directory_iterator(sample / "Resources")) {
    const std::string name = entry.path().filename();
    const bool isOtherLanguage = name.ends_with(".lproj") && name != "en.lproj" && name != "de.lproj";
    if (name != "files" && !isOtherLanguage) fs::copy(entry.path(), at(name), all);
  }
  write("../MacOS/Installer", "program");
  mode("../MacOS/Installer", 0755);
  makePayload();
}

void MadeBundle::makePayload() const {
  const Texts studio = {{"CFBundleExecutable", "Studio"}, {"CFBundleVersion", "3.1.2"}};
  makeBundle(payload("HD/Applications/Studio.app"), studio);
  writeFile(payload("HD/Applications/Studio.app/Contents/MacOS/Studio"), machO({}));
  writeFile(payload("HD/Applications/Studio.app/Contents/Resources/Help.txt"), "help");
  fs::create_symlink("Help.txt", payload("HD/Applications/Studio.app/Contents/Resources/Index"));
  writeFile(payload("HD/Library/Application Support/Corvane/Dunmore 3/Presets/Wei\u00DF.preset"), "white");
  writeFile(payload("HD/Library/Application Support/Corvane/Dunmore 3/Presets/.order"), "Wei\u00DF");
  writeFile(payload("HD/Library/Application Support/Adobe/Lightroom/Modules/Dunmore.lrplugin/Info.lua"), "return {}");
  writeFile(payload("PHOTOSHOP/Presets/Actions/Dunmore.atn"), "actions");
  makeBundle(payload("PHOTOSHOP/Plug-ins/Extra.plugin"),
             {{"CFBundleExecutable", "Extra"}, {"CFBundleVersion", "3.1.0"}});
  writeFile(payload("PHOTOSHOP/Plug-ins/Extra.plugin/Contents/MacOS/Extra"), machO({}));
  makeBundle(payload("PHOTOSHOP_PLUGINS/Dunmore.plugin"),
             {{"CFBundleExecutable", "Dunmore"}, {"CFBundleVersion", "3.1.2"}});
  writeFile(payload("PHOTOSHOP_PLUGINS/Dunmore.plugin/Contents/MacOS/Dunmore"), machO({}));
  writeFile(payload("LIGHTROOM/External Editor Presets/Dunmore.lrtemplate"), "s = {}");
}

void MadeBundle::edit(const std::string& path, std::string_view what, std::string_view with) const {
  std::string content = read(path);
  const std::size_t start = content.find(what);
  if (start == std::string::npos) throw std::logic_error(path + " does not hold " + std::string(what));
  write(path, content.replace(start, what.size(), replacingOccurrences(with, "$&", what)));
}

void MadeBundle::remove(const std::string& path) const {
  if (fs::remove_all(at(path)) == 0) throw std::logic_error(path + " is not there");
}

void MadeBundle::mode(const std::string& path, unsigned permissions) const {
  fs::permissions(at(path), static_cast<fs::perms>(permissions));
}

std::vector<Finding> MadeBundle::findings() const {
  const auto system = makePlatformForMaker(path_);
  return checkBundle((*system)->platform());
}

// SPDX-License-Identifier: Apache-2.0

#include "tool/MunkiItem.h"

#include <string_view>

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "foundation/Text.h"

namespace {

std::string escaped(std::string_view text) {
  const std::string ampersands = replacingOccurrences(text, "&", "&amp;");
  return replacingOccurrences(replacingOccurrences(ampersands, "<", "&lt;"), ">", "&gt;");
}

/// As one word of a shell.
std::string shellWord(std::string_view text) { return "'" + replacingOccurrences(text, "'", R"('\'')") + "'"; }

/// What all scripts begin with. The person at the console is the one whose hosts are looked for, and who gets the
/// product. INSTALLER_USER and INSTALLER_TARGET are for trying the scripts.
constexpr std::string_view scriptStart = R"sh(#!/bin/sh
programs=%1$@
target=${INSTALLER_TARGET:-/}
user=${INSTALLER_USER:-$(/usr/bin/stat -f %Su /dev/console)}
case "$user" in "" | root | loginwindow | _mbsetupuser) exit 1 ;; esac
SUDO_UID=$(id -u "$user") || exit 1
export SUDO_UID
)sh";

/// Munki installs when the script ends with 0.
constexpr std::string_view installCheckScript = R"sh([ -x "$programs/InstallerTool" ] || exit 0
case "$("$programs/InstallerTool" --version --target "$target")" in *%1$@) ;; *) exit 0 ;; esac
"$programs/InstallerTool" verify --target "$target" >/dev/null 2>&1
[ $? -eq 1 ] && exit 0
exit 1
)sh";

constexpr std::string_view installScript = R"sh("$programs/Installer" -quiet -target "$target" || exit
"$programs/InstallerTool" verify --target "$target"
)sh";

/// What was kept, and why, is in the output; it is no reason to try again.
constexpr std::string_view removalScript = R"sh([ -x "$programs/InstallerTool" ] || exit 0
"$programs/InstallerTool" remove --yes --target "$target"
status=$?
[ $status -le 1 ] || exit $status
rm -R %1$@
)sh";

class PropertyList {
 public:
  void add(std::string_view key, std::string_view text) {
    text_ += formatted("\t<key>%1$@</key>\n\t<string>%2$@</string>\n", key, escaped(text));
  }
  void addFlag(std::string_view key, bool value) {
    text_ += formatted("\t<key>%1$@</key>\n\t<%2$@/>\n", key, value ? "true" : "false");
  }
  void addXml(std::string_view key, std::string_view xml) {
    text_ += formatted("\t<key>%1$@</key>\n\t%2$@\n", key, xml);
  }
  [[nodiscard]] std::string text() const {
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
)" + text_ +
           "</dict>\n</plist>\n";
  }

 private:
  std::string text_;
};

}  // namespace

std::string munkiItem(const ToolTexts& texts, const std::string& folder) {
  const std::string bundle = joinPath(folder, "Installer.app");
  const std::string programs = shellWord(joinPath(bundle, "Contents/MacOS"));
  // With nobody at the console, nothing is needed, and what Munki does all the same has failed.
  const std::string start = formatted(scriptStart, programs);
  const std::string name = replacingOccurrences(replacingOccurrences(texts.product(), " ", ""), "/", "-");
  PropertyList item;
  item.addXml("catalogs", "<array><string>testing</string></array>");
  item.add("name", name);
  item.add("display_name", texts.product());
  item.add("version", texts.version());
  item.add("installer_type", "copy_from_dmg");
  item.add("installer_item_location", name + "-" + texts.version() + ".dmg");
  item.addXml("items_to_copy", formatted("<array><dict><key>source_item</key><string>Installer.app</string>"
                                         "<key>destination_path</key><string>%@</string></dict></array>",
                                         escaped(folder)));
  item.add("installcheck_script", start + formatted(installCheckScript, shellWord(" " + texts.version())));
  item.add("postinstall_script", start + std::string(installScript));
  item.addFlag("unattended_install", true);
  item.addFlag("uninstallable", true);
  item.add("uninstall_method", "uninstall_script");
  item.add("uninstall_script", start + formatted(removalScript, shellWord(bundle)));
  item.addFlag("unattended_uninstall", true);
  return item.text();
}

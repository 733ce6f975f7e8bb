// SPDX-License-Identifier: Apache-2.0

#include <sys/stat.h>
#include <sys/xattr.h>

#include <stdexcept>

#include "foundation/Text.h"
#include "kit/MadeBundle.h"

namespace {

using Of = const MadeBundle&;

const std::string files = "Contents/Resources/files/";
const std::string support = files + "HD/Library/Application Support/";
const std::string product = support + "Corvane/Dunmore 3/";
const std::string studio = files + "HD/Applications/Studio.app/";
const std::string plugIn = files + "PHOTOSHOP_PLUGINS/Dunmore.plugin/";

// The same below the resources, for changing them.
constexpr const char* program = "files/PHOTOSHOP_PLUGINS/Dunmore.plugin/Contents/MacOS/Dunmore";
constexpr const char* versions = "files/PHOTOSHOP_PLUGINS/Dunmore.plugin/Contents/Info.plist";
constexpr const char* makers = "files/HD/Library/Application Support/Corvane";
constexpr const char* help = "files/HD/Applications/Studio.app/Contents/Resources/Help.txt";

std::string inMakers(const std::string& name) { return std::string(makers) + "/" + name; }

Change linking(const std::string& target, const std::string& path) {
  return [=](Of b) { fs::create_symlink(target, b.at(path)); };
}

void mark(Of bundle, const std::string& path) {
  const std::string value = "0081;65000000;Browser;";
  if (::setxattr(bundle.at(path).c_str(), "user.com.apple.quarantine", value.data(), value.size(), 0) != 0) {
    throw std::runtime_error("no extended attributes here");
  }
}

}  // namespace

const std::vector<Mistake>& payloadMistakes() {
  static const std::vector<Mistake> mistakes = {
      {"payload.empty", "Contents/Resources/files", "HD", removing("files")},
      {"payload.part", files + "PHOTOSHOP_PLUGIN", "PHOTOSHOP_PLUGINS",
       renaming("files/PHOTOSHOP_PLUGINS", "files/PHOTOSHOP_PLUGIN")},
      {"payload.part", files + "Read Me.txt", "PHOTOSHOP_PLUGINS", writing("files/Read Me.txt", "")},
      {"payload.company-folder", support + "Korvane", "\"Corvane\"",
       renaming(makers, "files/HD/Library/Application Support/Korvane")},
      {"payload.company-folder", support + "Korvane", "\"Corvane\"",
       [](Of b) {
         b.rename(makers, "files/HD/Library/Application Support/Korvane");
         for (const char* const part : {"PHOTOSHOP", "PHOTOSHOP_PLUGINS", "LIGHTROOM", "HD/Applications",
                                        "HD/Library/Application Support/Adobe"}) {
           b.remove(std::string("files/") + part);
         }
       }},
      {"payload.loose", support + "Corvane/Read Me.txt", "Library/Application Support/Corvane",
       writing(inMakers("Read Me.txt"), "")},
      {"payload.loose", files + "HD/Applications/Read Me.txt", "package",
       writing("files/HD/Applications/Read Me.txt", "")},
      {"payload.hidden", product + ".catalogue", "full stop", writing(inMakers("Dunmore 3/.catalogue"), "")},
      {"payload.hidden", files + "PHOTOSHOP/.DS_Store", "Remove", writing("files/PHOTOSHOP/.DS_Store", "")},
      {"payload.link", files + "PHOTOSHOP/Actions", "the file itself", linking("Presets", "files/PHOTOSHOP/Actions")},
      {"payload.device", plugIn + "pipe", "Remove",
       [](Of b) { static_cast<void>(::mkfifo(b.at("files/PHOTOSHOP_PLUGINS/Dunmore.plugin/pipe").c_str(), 0644)); }},
      {"payload.misplaced", files + "LIGHTROOM/Dunmore.plugin", "to PHOTOSHOP_PLUGINS",
       renaming("files/PHOTOSHOP_PLUGINS/Dunmore.plugin", "files/LIGHTROOM/Dunmore.plugin")},
      {"payload.misplaced", files + "PHOTOSHOP/Studio.app", "to HD/Applications",
       renaming("files/HD/Applications/Studio.app", "files/PHOTOSHOP/Studio.app")},
      {"payload.misplaced", files + "PHOTOSHOP_PLUGINS/Export.lrplugin", "to LIGHTROOM",
       writing("files/PHOTOSHOP_PLUGINS/Export.lrplugin/Info.lua", "")},
      {"payload.root-only", files + "HD/Library/Services/Studio.app", "Applications",
       [](Of b) {
         fs::create_directories(b.at("files/HD/Library/Services"));
         b.rename("files/HD/Applications/Studio.app", "files/HD/Library/Services/Studio.app");
       }},

      {"programs.no-info", plugIn + "Contents/Info.plist", "property list", writing(versions, "<plist>")},
      {"programs.no-info", support + "Adobe/Lightroom/Modules/Dunmore.lrplugin/Info.lua", "description of the plug-in",
       [](Of b) {
         b.rename("files/HD/Library/Application Support/Adobe/Lightroom/Modules/Dunmore.lrplugin/Info.lua",
                  "files/HD/Library/Application Support/Adobe/Lightroom/Modules/Dunmore.lrplugin/Infos.lua");
       }},
      {"programs.missing", plugIn + "Contents/Info.plist (CFBundleExecutable)", "CFBundleExecutable",
       [](Of b) {
         b.edit(versions, "CFBundleExecutable", "CFExecutable");
         b.remove(program);
       }},
      {"programs.missing", plugIn + "Contents/Info.plist (CFBundleExecutable)", "letter case",
       renaming(program, std::string(program) + "3")},
      {"programs.kind", studio + "Contents/MacOS/Studio", "for Macs",
       writing("files/HD/Applications/Studio.app/Contents/MacOS/Studio",
               "\x7F"
               "ELF")},
      {"programs.damaged", plugIn + "Contents/MacOS/Dunmore", "whole file",
       [](Of b) { b.write(program, b.read(program).substr(0, b.read(program).size() - 8)); }},
      {"programs.architecture", plugIn + "Contents/MacOS/Dunmore", "arm64",
       writing(program, machO({.isForApple = false}))},
      {"programs.architecture", plugIn + "Contents/MacOS/Dunmore", "x86_64",
       writing(program, machO({.isForIntel = false}))},
      {"programs.minimum-system", plugIn + "Contents/MacOS/Dunmore", "LSMinimumSystemVersion",
       writing(program, machO({.minimumSystem = 14}))},
      {"programs.unsigned", plugIn + "Contents/MacOS/Dunmore", "Sign", writing(program, machO({.isSigned = false}))},
      {"versions.none", plugIn + "Contents/Info.plist (CFBundleVersion)", "CFBundleVersion",
       editing(versions, "3.1.2", "")},
      {"versions.part", plugIn + "Contents/Info.plist (CFBundleVersion)", "numbers",
       editing(versions, "3.1.2", "3.1.2b4")},
      {"versions.long", plugIn + "Contents/Info.plist (CFBundleVersion)", "10000",
       editing(versions, "3.1.2", "3.1.20260115")},
      {"versions.parts", plugIn + "Contents/Info.plist (CFBundleVersion)", "3.2.0", editing(versions, "3.1.2", "3.2")},

      {"files.no-program", "Contents/MacOS/Installer", "back", removing("../MacOS/Installer")},
      {"files.not-startable", "Contents/MacOS/Installer", "a+x", settingMode("../MacOS/Installer", 0644)},
      {"files.name", files + "PHOTOSHOP/a:b.atn", "colons", writing("files/PHOTOSHOP/a:b.atn", "")},
      {"files.collision", product + "presets", "another name", writing(inMakers("Dunmore 3/presets"), "")},
      {"files.not-composed", files + "PHOTOSHOP/Gru\u0308n.atn", "\"Gr\u00FCn.atn\"",
       writing("files/PHOTOSHOP/Gru\u0308n.atn", "")},
      {"files.mode", product + "Presets", "a+rX", settingMode(inMakers("Dunmore 3/Presets"), 0700)},
      {"files.changeable", studio + "Contents/Resources/Help.txt", "o-w", settingMode(help, 0666)},
      {"files.set-id", plugIn + "Contents/MacOS/Dunmore", "ug-s", settingMode(program, 04755)},
      {"files.link-out", product + "Shared", "same package", linking("../Shared", inMakers("Dunmore 3/Shared"))},
      {"files.link-out", plugIn + "Help", "same package",
       linking("/usr/share/help", "files/PHOTOSHOP_PLUGINS/Dunmore.plugin/Help")},
      {"files.link-out", "Contents/Resources/de.lproj/license.txt", "file itself",
       [](Of b) {
         writeFile(b.path().parent_path() / "license.txt", "Lizenz");
         b.remove("de.lproj/license.txt");
         linking("../../../../license.txt", "de.lproj/license.txt")(b);
       }},
      {"files.link-dangling", studio + "Contents/Resources/Index", "Correct", removing(help)},
      {"files.quarantine", plugIn.substr(0, plugIn.size() - 1), "xattr -dr",
       [](Of b) {
         mark(b, "files/PHOTOSHOP_PLUGINS/Dunmore.plugin");
         mark(b, program);
       }},
  };
  return mistakes;
}

// SPDX-License-Identifier: Apache-2.0

// What is said of mistakes in the payload and in files of any kind.
#include "kit/CatalogueParts.h"

using enum Severity;

const std::vector<CatalogueEntry>& catalogueOfPayload() {
  static const std::vector<CatalogueEntry> entries = {
      // What is installed.
      {"payload.empty", error, "there is nothing to install", "Nothing is installed.",
       "Put the product into the folders HD, PHOTOSHOP, PHOTOSHOP_PLUGINS and LIGHTROOM."},
      {"payload.part", error, "\"%1$@\" is no part of a payload", "Nothing of it is installed.",
       "Call it HD, PHOTOSHOP, PHOTOSHOP_PLUGINS or LIGHTROOM, or put it into one of them."},
      {"payload.company-folder", error, "the folder is called \"%1$@\" and the company \"%2$@\"",
       "Nothing of it but packages is installed.", "Call the folder \"%2$@\", or correct company_name."},
      {"payload.loose", error, "the file is in no package and no product folder", "It is not installed.",
       "Put it into a package, or into a folder below Library/Application Support/%1$@."},
      {"payload.hidden", warning, "hidden items stay behind", "It is not installed.",
       "Remove it, or give it a name that does not begin with a full stop."},
      {"payload.link", warning, "links outside a package or product folder stay behind", "It is not installed.",
       "Put the file itself there."},
      {"payload.device", error, "this is neither a file nor a folder nor a link",
       "It, or the item that it is in, is not installed, and the install fails.", "Remove it."},
      {"payload.misplaced", error, "%1$@ belongs into %2$@, not into %3$@", "No application finds it.",
       "Move it to %2$@."},
      {"payload.root-only", warning, "administrator rights do not reach %1$@", "Only root can install it.",
       "Put it below Applications or Library/Application Support."},
      // Programs and their versions.
      {"programs.no-info", error, "the bundle has no %1$@ that can be read",
       "Neither the system nor an application loads it.", "%2$@"},
      {"programs.missing", error, "there is no program \"%1$@\" in the bundle", "It cannot be started or loaded.",
       "Put the program into Contents/MacOS, or correct CFBundleExecutable; letter case counts."},
      {"programs.kind", error, "the program of the bundle is %1$@", "It cannot be started or loaded on a Mac.",
       "Put the program for Macs there."},
      {"programs.damaged", error, "a part of what is for %1$@ is missing", "It cannot be started or loaded.",
       "Put the whole file there."},
      {"programs.architecture", warning, "it is for %2$@, and not for %1$@",
       "Applications that run as %1$@ do not load it.", "Build it for arm64 and x86_64."},
      {"programs.minimum-system", warning, "it needs macOS %1$@, and the installer runs from macOS %2$@ on",
       "It is installed on systems where it cannot be loaded.",
       "Build it for macOS %2$@, or set LSMinimumSystemVersion of the installer to %1$@."},
      {"programs.unsigned", warning, "it has no signature",
       "Macs with Apple's processors refuse to run it, and Apple does not notarize the installer.",
       "Sign it with your certificate before it is packed."},
      {"versions.none", warning, "the bundle has no version",
       "Who compares versions cannot tell whether it is newer than what is installed.", "Set CFBundleVersion."},
      {"versions.part", warning, "\"%2$@\" in the version %1$@ is no number and counts as 0",
       "Who compares versions may take the installed one for the newer one.",
       "Write numbers with full stops between them."},
      {"versions.long", warning, "\"%2$@\" in the version %1$@ has more than four digits",
       "Who compares versions may take a later one for an older one.", "Keep each number after the first below 10000."},
      {"versions.parts", warning, "the version %1$@ has fewer parts than the product's, %2$@",
       "A version with fewer parts counts as older than any with more, whatever its numbers.",
       "Give all versions of the product the same number of parts, here %3$@."},
      // Files of any kind.
      {"files.no-program", error, "the installer's program is missing", "The installer does not start.",
       "Put the program back."},
      {"files.not-startable", error, "the program may not be started", "The installer does not start, or not in full.",
       "Allow it: chmod a+x."},
      {"files.name", error, "a Mac's volume cannot hold this name", "It cannot be installed.",
       "Name it in UTF-8, without colons and line ends."},
      {"files.collision", error, "\"%1$@\" beside it has the same name on most volumes of Macs",
       "Only one of the two is installed, or the install fails.", "Give one of them another name."},
      {"files.not-composed", warning, "the name is not in composed characters (NFC)",
       "What is installed may look changed to the installer's own checks.",
       "Rename it to \"%1$@\" in composed characters."},
      {"files.mode", warning, "not everybody may read it", "Ordinary users cannot install it.",
       "Allow it: chmod -R a+rX."},
      {"files.changeable", warning, "everybody may change it",
       "Somebody else can change what is installed with administrator rights.", "Forbid it: chmod -R o-w."},
      {"files.set-id", warning, "it runs with the rights of its owner or group",
       "The bit is lost when it is installed, and Apple does not notarize the installer.", "Remove it: chmod ug-s."},
      {"files.link-out", warning, "the link leads out of what it belongs to: %1$@",
       "On another Mac it leads nowhere, or to somebody else's file.",
       "Let the link lead to something in the same package or product folder, or put the file itself there."},
      {"files.link-dangling", warning, "the link leads nowhere: %1$@", "What looks for it finds nothing.",
       "Correct the link, or remove it."},
      {"files.quarantine", warning, "items with the mark of a download: %1$@",
       "Plug-ins keep the mark when they are installed, and applications refuse them.",
       "Remove it from the whole bundle: xattr -dr com.apple.quarantine."},
  };
  return entries;
}

const std::vector<CatalogueEntry>& catalogue() {
  static const std::vector<CatalogueEntry> entries = [] {
    std::vector<CatalogueEntry> all = catalogueOfResources();
    all.insert(all.end(), catalogueOfPayload().begin(), catalogueOfPayload().end());
    return all;
  }();
  return entries;
}

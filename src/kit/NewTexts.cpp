// SPDX-License-Identifier: Apache-2.0

#include "kit/NewTexts.h"

#include <array>
#include <utility>

#include "foundation/StringsTable.h"
#include "foundation/Text.h"
#include "kit/Reference.h"
#include "kit/Template.h"

namespace {

std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') result += '\\';
    result += c == '\n' ? std::string("\\n") : std::string(1, c);
  }
  return result + "\"";
}

/// The key that a line of a table starts with; empty when it starts with none.
std::string_view keyOf(std::string_view line) {
  if (!line.starts_with('"')) return {};
  return line.substr(1, line.find('"', 1) - 1);
}

/// Values that are the sample's own, and what a template has instead.
constexpr std::array<std::pair<std::string_view, std::string_view>, 7> templateValues = {
    {{"company_name", templateCompany},
     {"product_name", templateProduct},
     {"product_version", "1.0.0"},
     {"app_plist", "com.example.product"},
     {"installer_identifier", "com.example.installer"},
     {"external_editors", ""},
     {"external_editor_applications", ""}}};

}  // namespace

std::string commentedTable(std::string_view bytes) {
  const StringsTable table = parseStringsTable(bytes);
  std::string result;
  std::string purpose;
  bool isComment = false;
  for (std::string_view line : split(referenceTextsFile(), '\n')) {
    line = trimmed(line);
    if (line.starts_with("/*")) purpose.clear();
    isComment = isComment || line.starts_with("/*");
    if (isComment) purpose += (purpose.empty() ? "" : " ") + std::string(line);
    if (line.ends_with("*/")) isComment = false;
    const auto text = table.texts.find(keyOf(line));
    if (keyOf(line).empty() || text == table.texts.end()) continue;
    const std::string english = replacingOccurrences(referenceTexts().texts.at(text->first), "*/", "* /");
    result +=
        purpose + "\n/* English: " + english + " */\n" + quoted(text->first) + " = " + quoted(text->second) + ";\n\n";
  }
  return result;
}

std::string templateSettings() {
  std::string result;
  for (const std::string_view line : split(referenceSettingsFile(), '\n')) {
    std::string own(line);
    for (const auto& [key, value] : templateValues) {
      if (keyOf(line) == key) own = quoted(key) + " = " + quoted(value) + ";";
    }
    if (keyOf(line) == "copyright") own = "\"copyright\" = \"\u00A9 %COMPANYNAME%\";";
    result += own + "\n";
  }
  return std::string(trimmed(result)) + "\n";
}

std::string templateLicence() { return "The licence of " + std::string(templateProduct) + " belongs here.\n"; }

std::string instructions() {
  return R"(Your installer
==============

1. Installer.app/Contents/Resources/en.lproj/installer.strings
   Say what your company and your product are called, and choose what the installer does. No other file names them.

2. Installer.app/Contents/Resources/LANGUAGE.lproj
   license.txt       write your licence
   register.rtf      is shown after a successful install
   host_running.rtf  asks the user to quit an application, proceed.rtf thanks for it
   Localizable.strings  all other texts; change what you like
   Remove the folders of languages that you do not offer.

3. Installer.app/Contents/Resources
   Product.png       the picture beside the steps, 392 by 920 pixels
   Installer.icns    the installer's icon, up to 1024 by 1024 pixels
   These two are grey until you replace them; the other pictures can stay. One file serves every screen: it has two
   pixels a point, and is scaled down where the screen has one. There is no second file for it; NAME@2x.png is not read.

4. Installer.app/Contents/Resources/files
   Put your product into these folders, and remove those that you do not need:

   HD                 goes to the same place of the volume: applications, plug-ins and other bundles wherever they are,
                      as HD/Applications/Your.app, and all that is in
                      HD/Library/Application Support/COMPANY/PRODUCT
   PHOTOSHOP          goes into the folder of each Photoshop, as PHOTOSHOP/Presets/Actions/Your.atn
   PHOTOSHOP_PLUGINS  goes into the folder for plug-ins of each Photoshop, or the one that the user picks
   LIGHTROOM          goes into the user's Library/Application Support/Adobe/Lightroom

   Files whose names begin with a full stop stay behind.

5. Check, try and pack it

   Installer.app/Contents/MacOS/InstallerTool check Installer.app
   Installer.app/Contents/MacOS/InstallerTool preview Installer.app
   Installer.app/Contents/MacOS/InstallerTool pack Installer.app

   Packing needs the installer's sources: call it in their folder when the tool comes from elsewhere.
)";
}

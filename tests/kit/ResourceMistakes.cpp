// SPDX-License-Identifier: Apache-2.0

#include "kit/MadeBundle.h"

namespace {

using Of = const MadeBundle&;

const std::string resources = "Contents/Resources/";
const std::string german = resources + "de.lproj/";
const std::string germanTable = german + "Localizable.strings";
const std::string names = resources + "en.lproj/installer.strings";
const std::string mainWindow = resources + "MainWindow.ui";

constexpr const char* germanTexts = "de.lproj/Localizable.strings";
constexpr const char* productNames = "en.lproj/installer.strings";
constexpr const char* window = "MainWindow.ui";

std::string rtf(const std::string& text) { return "{\\rtf1\\ansi\\ansicpg1252 " + text + "}"; }

/// A picture without pixels: a PNG file whose check sums are never right.
std::string damagedPicture() { return std::string("\x89PNG\r\n\x1A\n\0\0\0\4IHDR", 16) + "sizesums"; }

/// A TIFF file of that many pixels a side, one byte each.
std::string greyPicture(char width, char height) {
  std::string bytes("II*\0\10\0\0\0\4\0", 10);
  const auto entry = [&](char tag, char high, char value) {
    bytes += std::string({tag, high, 4, 0, 1, 0, 0, 0, value, 0, 0, 0});
  };
  entry(0, 1, width);
  entry(1, 1, height);
  entry(0x11, 1, 0);
  entry(0x17, 1, 0);
  return bytes + std::string(4, '\0');
}

void addToTable(Of bundle, const std::string& line) {
  bundle.write(germanTexts, bundle.read(germanTexts) + line + "\n");
}

}  // namespace

const std::vector<Mistake>& resourceMistakes() {
  static const std::vector<Mistake> mistakes = {
      {"product.no-table", names, "company_name", [](Of b) { b.remove(productNames); }},
      {"product.missing", names + " (company_name)", "company_name",
       [](Of b) { b.edit(productNames, "\"Corvane\"", "\"\""); }},
      {"product.missing", names + " (app_plist)", "app_plist",
       [](Of b) { b.edit(productNames, "\"app_plist\" =", "//"); }},
      {"product.unknown-key", names + " (compny)", "name of the key",
       [](Of b) { b.write(productNames, b.read(productNames) + "compny = Corvane;"); }},
      {"product.translated-name", german + "installer.strings (company_name)", "en.lproj",
       [](Of b) { b.write("de.lproj/installer.strings", "company_name = Korvane; copyright = '2026';"); }},
      {"product.editors", names + " (external_editors)", "external_editors = \"\"",
       [](Of b) {
         b.edit(productNames, "\"Corvane\"", "\"New Corvane\"");
         b.rename("files/HD/Library/Application Support/Corvane", "files/HD/Library/Application Support/New Corvane");
       }},
      {"product.language", names + " (languages)", "dk.lproj",
       [](Of b) { b.edit(productNames, "\"languages\" = \"", "$&en dk"); }},
      {"product.host", names + " (hosts)", "photoshop",
       [](Of b) { b.edit(productNames, "\"hosts\" = \"", "$&Photoshop"); }},
      {"product.path", names + " (external_editor_applications)", "root of the volume",
       [](Of b) { b.edit(productNames, "\"external_editor_applications\" = \"", "$&Editor.app;"); }},
      {"product.two-payloads", names + " (payload)", "one of them",
       [](Of b) {
         b.edit(productNames, "\"payload\" = \"", "$&Payload");
         fs::copy(b.at("files"), b.path().parent_path() / "Payload",
                  fs::copy_options::recursive | fs::copy_options::copy_symlinks);
       }},
      {"product.folder-name", names + " (company_name)", "without \"/\"",
       [](Of b) {
         b.edit(productNames, "\"Corvane\"", "\"Corvane/West\"");
         b.edit(productNames, "\"Lumatra X\"", "\"\"");
       }},
      {"product.domain", names + " (app_plist)", "com.company.product",
       [](Of b) { b.edit(productNames, "dunmore3\"", "dunmore3.plist\""); }},
      {"product.flag", names + " (identifier_file)", "yes or no",
       [](Of b) { b.edit(productNames, "\"identifier_file\" = \"no", "\"identifier_file\" = \"true"); }},
      {"product.stand-alone", names + " (aperture_page)", "Standalone",
       [](Of b) { b.edit(productNames, "\"aperture_page\" = \"no", "\"aperture_page\" = \"yes"); }},
      {"product.earlier", names + " (remove_earlier)", "PlugIn",
       [](Of b) { b.edit(productNames, "\"remove_earlier\" = \"no", "\"remove_earlier\" = \"yes"); }},
      {"product.preset", names + " (lightroom_preset)", "HD/Applications",
       [](Of b) { b.edit(productNames, "\"lightroom_preset\" = \"", "$&Editor.app"); }},
      {"product.info", "Contents/Info.plist", "dictionary", [](Of b) { b.edit("../Info.plist", "</dict>", ""); }},
      {"product.identifier", names + " (installer_identifier)", "com.company.installer",
       [](Of b) { b.edit(productNames, "com.corvane.installer", "corvane installer"); }},
      {"product.version", names + " (product_version)", "2.1.0",
       [](Of b) { b.edit(productNames, "\"3.1.2\"", "\"3.1 beta\""); }},
      {"product.leftover", resources + "de.lproj/license.txt:2", "Your Product",
       [](Of b) { b.write("de.lproj/license.txt", "Lizenz\nYour Product\n"); }},
      {"product.leftover", german + "register.rtf", "Your Company",
       [](Of b) { b.write("de.lproj/register.rtf", rtf("Your Company")); }},

      {"tables.no-english", resources + "en.lproj/Localizable.strings", "every key",
       [](Of b) { b.remove("en.lproj/Localizable.strings"); }},
      {"tables.none", germanTable, "remove the folder", [](Of b) { b.remove(germanTexts); }},
      {"tables.damaged", resources + "en.lproj/Localizable.strings:2", "backslash",
       [](Of b) { b.edit("en.lproj/Localizable.strings", "\"Continue\";", "\"Continue\""); }},
      {"tables.encoding", germanTable, "UTF-8", [](Of b) { addToTable(b, "// caf\xE9"); }},
      {"tables.repeated", germanTable + " (quit)", "all but one", [](Of b) { addToTable(b, "quit = Ende;"); }},
      {"tables.missing-key", germanTable + " (go_back)", "\"Go Back\"",
       [](Of b) { b.edit(germanTexts, "\"go_back\" =", "//"); }},
      {"tables.unknown-key", germanTable + " (go_bakc)", "name of the key",
       [](Of b) { addToTable(b, "go_bakc = zur;"); }},
      {"tables.empty", germanTable + " (finish)", "Write the text",
       [](Of b) { b.edit(germanTexts, "\"finish\" = \"", "\"finish\" = \"\"; //"); }},
      {"tables.placeholders", germanTable + " (quit_menu_fmt)", "show %@",
       [](Of b) { b.edit(germanTexts, "\"quit_menu_fmt\" = \"", "\"quit_menu_fmt\" = \"Ende\"; //"); }},
      {"tables.placeholders", germanTable + " (done)", "show no argument",
       [](Of b) { b.edit(germanTexts, "\"done\" = \"", "$&%@ "); }},

      {"texts.licence-missing", resources + "en.lproj/license.txt", "UTF-8",
       [](Of b) { b.remove("en.lproj/license.txt"); }},
      {"texts.licence-untranslated", german + "license.txt", "in this language",
       [](Of b) { b.remove("de.lproj/license.txt"); }},
      {"texts.licence-encoding", german + "license.txt", "UTF-8",
       [](Of b) {
         b.write("de.lproj/license.txt",
                 "\xFC"
                 "ber");
       }},
      {"texts.licence-empty", german + "license.txt", "licence", [](Of b) { b.write("de.lproj/license.txt", " \n"); }},
      {"texts.page-missing", resources + "en.lproj/register.rtf", "rich text",
       [](Of b) { b.remove("en.lproj/register.rtf"); }},
      {"texts.page-untranslated", german + "proceed.rtf", "in this language",
       [](Of b) { b.remove("de.lproj/proceed.rtf"); }},
      {"texts.page-damaged", german + "register.rtf", "rich text format",
       [](Of b) { b.write("de.lproj/register.rtf", "{\\rtf1 {text"); }},
      {"texts.page-empty", german + "register.rtf", "Write",
       [](Of b) { b.write("de.lproj/register.rtf", rtf("\\par")); }},
      {"texts.page-characters", german + "register.rtf", "1252",
       [](Of b) { b.write("de.lproj/register.rtf", "{\\rtf1\\ansi\\ansicpg1251 gr\\'fcn}"); }},
      {"texts.page-placeholder", german + "proceed.rtf", "%PRODUCTNAME%",
       [](Of b) { b.write("de.lproj/proceed.rtf", rtf("%PRODUKT%")); }},
      {"texts.page-lacks", german + "host_running.rtf", "%HOSTNAME%",
       [](Of b) { b.write("de.lproj/host_running.rtf", rtf("Beenden")); }},

      {"pictures.missing", resources + "Caution.png", "112 by 112", [](Of b) { b.remove("Caution.png"); }},
      {"pictures.format", resources + "Caution.png", "PNG", [](Of b) { b.write("Caution.png", "GIF89a"); }},
      {"pictures.type", resources + "checkmark.jpg", "PNG", [](Of b) { b.write("checkmark.jpg", "\xFF\xD8\xFF"); }},
      {"pictures.damaged", resources + "Caution.png", "again", [](Of b) { b.write("Caution.png", damagedPicture()); }},
      {"pictures.damaged", resources + "Installer.icns", "again",
       [](Of b) { b.write("Installer.icns", b.read("Installer.icns").substr(0, 100000)); }},
      {"pictures.too-large", resources + "Installer.icns", "32 MB",
       [](Of b) {
         const std::string icons = b.read("Installer.icns");
         b.write("Installer.icns", "icns" + std::string({3, 0, 0, 0}) + icons.substr(8) + "junk" +
                                       std::string({2, 20, 0, 0}) +
                                       std::string((std::size_t{2} << 24U) + (20U << 16U) - 8, ' '));
       }},
      {"pictures.small", resources + "DotBlue.tiff", "24 by 24",
       [](Of b) { b.write("DotBlue.tiff", greyPicture(12, 12)); }},
      {"pictures.shape", resources + "DotBlue.tiff", "12 by 12",
       [](Of b) { b.write("DotBlue.tiff", greyPicture(48, 24)); }},
      {"pictures.at-2x", resources + "Product@2x.png", "Product.png", [](Of b) { b.write("Product@2x.png", "png"); }},
      {"pictures.hidden-by", german + "Installer.png", "one of the two",
       [](Of b) { b.write("de.lproj/Installer.png", b.read("Caution.png")); }},
      {"pictures.hidden-by", resources + "Caution.png", "one of the two",
       [](Of b) { b.write("Caution.icns", b.read("Installer.icns")); }},

      {"window.missing", resources + "CustomInstall.ui", "back", [](Of b) { b.remove("CustomInstall.ui"); }},
      {"window.damaged", mainWindow, "Designer", [](Of b) { b.edit(window, "</ui>", ""); }},
      {"window.object", mainWindow + " (dynamicView)", "dynamicView",
       [](Of b) { b.edit(window, "name=\"dynamicView\"", "name=\"view\""); }},
      {"window.key", mainWindow + ":4 (mainWindow)", "property",
       [](Of b) { b.edit(window, "windowTitle", "windowTitel"); }},
      {"window.key", resources + "CustomInstall.ui:24 (customPathField)", "property",
       [](Of b) { b.edit("CustomInstall.ui", "<string>customPath</string>", "<string>customPaht</string>"); }},
      {"window.action", resources + "CustomInstall.ui:31 (browseButton)", "action",
       [](Of b) { b.edit("CustomInstall.ui", "browseButtonPressed:", "browse:"); }},
      {"window.binding", mainWindow + ":10 (productPicture)", "dynamic property",
       [](Of b) { b.edit(window, "\"bindName\"", "\"bindNaem\""); }},
      {"window.text", mainWindow + ":15 (stepIndicatorView)", "key",
       [](Of b) { b.edit(window, "name_steps", "name_stesp"); }},
      {"window.picture", mainWindow + ":10 (productPicture)", "picture",
       [](Of b) { b.edit(window, "<string>Product<", "<string>Produkt<"); }},
  };
  return mistakes;
}

// SPDX-License-Identifier: Apache-2.0

#include "kit/MadeBundle.h"

namespace {

using Of = const MadeBundle&;

const std::string resources = "Contents/Resources/";
const std::string german = resources + "de.lproj/";
const std::string germanTable = german + "Localizable.strings";
const std::string names = resources + "en.lproj/installer.strings";
const std::string mainWindow = resources + "MainWindow.ui";

constexpr const char* englishTexts = "en.lproj/Localizable.strings";
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

Change addingToTable(const std::string& line, const std::string& table = germanTexts) {
  return [=](Of b) { b.write(table, b.read(table) + line + "\n"); };
}

}  // namespace

const std::vector<Mistake>& resourceMistakes() {
  static const std::vector<Mistake> mistakes = {
      {"product.no-table", names, "company_name", removing(productNames)},
      {"product.missing", names + " (company_name)", "company_name", configuring("company_name", "")},
      {"product.missing", names + " (app_plist)", "app_plist", editing(productNames, "\"app_plist\" =", "//")},
      {"product.unknown-key", names + " (compny)", "name of the key", addingToTable("compny = Corvane;", productNames)},
      {"product.translated-name", german + "installer.strings (company_name)", "en.lproj",
       writing("de.lproj/installer.strings", "company_name = Korvane; copyright = '2026';")},
      {"product.editors", names + " (external_editors)", "external_editors = \"\"",
       [](Of b) {
         configure(b.path(), "company_name", "New Corvane");
         b.rename("files/HD/Library/Application Support/Corvane", "files/HD/Library/Application Support/New Corvane");
       }},
      {"product.language", names + " (languages)", "dk.lproj", configuring("languages", "en dk")},
      {"product.host", names + " (hosts)", "photoshop", configuring("hosts", "Photoshop")},
      {"product.path", names + " (external_editor_applications)", "root of the volume",
       configuring("external_editor_applications", "Editor.app")},
      {"product.two-payloads", names + " (payload)", "one of them",
       [](Of b) {
         configure(b.path(), "payload", "Payload");
         fs::copy(b.at("files"), b.path().parent_path() / "Payload",
                  fs::copy_options::recursive | fs::copy_options::copy_symlinks);
       }},
      {"product.folder-name", names + " (company_name)", "without \"/\"",
       [](Of b) {
         configure(b.path(), "company_name", "Corvane/West");
         configure(b.path(), "external_editors", "");
       }},
      {"product.folder-name", names + " (product_name)", "full stops",
       editing(productNames, "\"Dunmore 3\"", "\"..\"")},
      {"product.domain", names + " (app_plist)", "com.company.product", configuring("app_plist", "dunmore3.plist")},
      {"product.flag", names + " (identifier_file)", "yes or no", configuring("identifier_file", "true")},
      {"product.stand-alone", names + " (aperture_page)", "Standalone", configuring("aperture_page", "yes")},
      {"product.earlier", names + " (remove_earlier)", "PlugIn", configuring("remove_earlier", "yes")},
      {"product.earlier", names + " (remove_earlier)", "PlugIn",
       [](Of b) {
         configure(b.path(), "remove_earlier", "yes");
         fs::create_directories(b.at("../SharedSupport/PlugIn"));
       }},
      {"product.hidden", "Contents/SharedSupport/PlugIn/.DS_Store", "Remove",
       [](Of b) {
         configure(b.path(), "remove_earlier", "yes");
         b.write("../SharedSupport/PlugIn/.DS_Store", "");
         b.write("../SharedSupport/AutoLayer/Old.8bf", "");
       }},
      {"product.hidden", "Contents/SharedSupport/Standalone/.DS_Store", "Remove",
       [](Of b) {
         configure(b.path(), "aperture_page", "yes");
         b.write("../SharedSupport/Standalone/.DS_Store", "");
         b.write("../SharedSupport/Standalone/Studio.app/PkgInfo", "");
       }},
      {"product.not-installed", "Contents/SharedSupport/Standalone/Editor.app", "HD/Applications",
       [](Of b) {
         configure(b.path(), "aperture_page", "yes");
         b.write("../SharedSupport/Standalone/Editor.app/PkgInfo", "");
       }},
      {"product.no-host", names + " (hosts)", "Add lightroom",
       [](Of b) {
         configure(b.path(), "hosts", "photoshop");
         b.remove("files/HD/Library/Application Support/Adobe");
       }},
      {"product.no-host", names + " (hosts)", "Add photoshop",
       [](Of b) {
         configure(b.path(), "hosts", "lightroom");
         b.remove("files/PHOTOSHOP_PLUGINS");
       }},
      {"product.no-host", names + " (hosts)", "Add lightroom",
       [](Of b) {
         configure(b.path(), "hosts", "aperture");
         configure(b.path(), "lightroom_preset", "Studio.app");
         for (const char* const part :
              {"PHOTOSHOP", "PHOTOSHOP_PLUGINS", "LIGHTROOM", "HD/Library/Application Support/Adobe"}) {
           b.remove(std::string("files/") + part);
         }
       }},
      {"product.no-payload", names + " (payload)", "Correct the name",
       [](Of b) {
         configure(b.path(), "payload", "Nowhere");
         b.remove("files");
       }},
      {"product.preset", names + " (lightroom_preset)", "HD/Applications",
       configuring("lightroom_preset", "Editor.app")},
      {"product.info", "Contents/Info.plist", "dictionary", editing("../Info.plist", "</dict>", "")},
      {"product.identifier", names + " (installer_identifier)", "com.company.installer",
       configuring("installer_identifier", "corvane installer")},
      {"product.version", names + " (product_version)", "2.1.0", configuring("product_version", "3.1 beta")},
      {"product.leftover", resources + "de.lproj/license.txt:2", "Your Product",
       writing("de.lproj/license.txt", "Lizenz\nYour Product\n")},
      {"product.leftover", german + "register.rtf", "Your Company",
       writing("de.lproj/register.rtf", rtf("Your Company"))},

      {"tables.no-english", resources + "en.lproj/Localizable.strings", "every key",
       removing("en.lproj/Localizable.strings")},
      {"tables.none", germanTable, "remove the folder", removing(germanTexts)},
      {"tables.damaged", resources + "en.lproj/Localizable.strings:2", "backslash",
       editing("en.lproj/Localizable.strings", "\"Continue\";", "\"Continue\"")},
      {"tables.encoding", germanTable, "UTF-8", addingToTable("// caf\xE9")},
      {"tables.repeated", germanTable + " (quit)", "all but one", addingToTable("quit = Ende;")},
      {"tables.damaged", names + ":7", "Correct the line", editing(productNames, "\"Dunmore 3\";", "\"Dunmore 3\"")},
      {"tables.missing-key", germanTable + " (own_label)", "\"Hello\"",
       [](Of b) {
         b.edit(window, "name_steps", "own_label");
         addingToTable("own_label = Hello;", englishTexts)(b);
       }},
      {"tables.missing-key", germanTable + " (go_back)", "\"Go Back\"", editing(germanTexts, "\"go_back\" =", "//")},
      {"tables.unknown-key", germanTable + " (go_bakc)", "name of the key", addingToTable("go_bakc = zur;")},
      {"tables.empty", germanTable + " (finish)", "Write the text",
       editing(germanTexts, "\"finish\" = \"", "\"finish\" = \"\"; //")},
      {"tables.placeholders", germanTable + " (quit_menu_fmt)", "show %@",
       editing(germanTexts, "\"quit_menu_fmt\" = \"", "\"quit_menu_fmt\" = \"Ende\"; //")},
      {"tables.placeholders", germanTable + " (done)", "show no argument",
       editing(germanTexts, "\"done\" = \"", "$&%@ ")},

      {"texts.licence-missing", resources + "en.lproj/license.txt", "UTF-8", removing("en.lproj/license.txt")},
      {"texts.licence-missing", german + "license.txt", "UTF-8",
       [](Of b) {
         configure(b.path(), "languages", "de");
         for (const char* const language : {"de", "en"}) b.remove(std::string(language) + ".lproj/license.txt");
       }},
      {"texts.licence-untranslated", german + "license.txt", "in this language", removing("de.lproj/license.txt")},
      {"texts.licence-encoding", german + "license.txt", "UTF-8",
       writing("de.lproj/license.txt",
               "\xFC"
               "ber")},
      {"texts.licence-empty", german + "license.txt", "licence", writing("de.lproj/license.txt", " \n")},
      {"texts.page-missing", resources + "en.lproj/register.rtf", "rich text", removing("en.lproj/register.rtf")},
      {"texts.page-untranslated", german + "proceed.rtf", "in this language", removing("de.lproj/proceed.rtf")},
      {"texts.page-damaged", german + "register.rtf", "rich text format",
       writing("de.lproj/register.rtf", "{\\rtf1 {text")},
      {"texts.page-empty", german + "register.rtf", "Write", writing("de.lproj/register.rtf", rtf("\\par"))},
      {"texts.page-characters", german + "register.rtf", "1252",
       writing("de.lproj/register.rtf", "{\\rtf1\\ansi\\ansicpg1251 gr\\'fcn}")},
      {"texts.page-placeholder", german + "proceed.rtf", "%PRODUCTNAME%",
       writing("de.lproj/proceed.rtf", rtf("%PRODUKT%"))},
      {"texts.placeholder", german + "license.txt", "%PRODUCTNAME%",
       writing("de.lproj/license.txt", "Lizenz von %PRODUKTNAME%")},
      {"texts.placeholder", germanTable + " (done)", "%COMPANYNAME%",
       editing(germanTexts, "\"done\" = \"", "$&%FIRMA% ")},
      {"texts.page-lacks", german + "host_running.rtf", "%HOSTNAME%",
       writing("de.lproj/host_running.rtf", rtf("Beenden"))},

      {"pictures.missing", resources + "Caution.png", "112 by 112", removing("Caution.png")},
      {"pictures.format", resources + "Caution.png", "PNG", writing("Caution.png", "GIF89a")},
      {"pictures.type", resources + "checkmark.jpg", "PNG", writing("checkmark.jpg", "\xFF\xD8\xFF")},
      {"pictures.damaged", resources + "Caution.png", "again", writing("Caution.png", damagedPicture())},
      {"pictures.damaged", resources + "Installer.icns", "again",
       [](Of b) { b.write("Installer.icns", b.read("Installer.icns").substr(0, 100000)); }},
      {"pictures.too-large", resources + "Installer.icns", "32 MB",
       [](Of b) {
         const std::string icons = b.read("Installer.icns");
         b.write("Installer.icns", "icns" + std::string({3, 0, 0, 0}) + icons.substr(8) + "junk" +
                                       std::string({2, 20, 0, 0}) +
                                       std::string((std::size_t{2} << 24U) + (20U << 16U) - 8, ' '));
       }},
      {"pictures.small", resources + "DotBlue.tiff", "24 by 24", writing("DotBlue.tiff", greyPicture(12, 12))},
      {"pictures.shape", resources + "DotBlue.tiff", "12 by 12", writing("DotBlue.tiff", greyPicture(48, 24))},
      {"pictures.at-2x", resources + "Product@2x.png", "Product.png", writing("Product@2x.png", "png")},
      {"pictures.hidden-by", german + "Installer.png", "one of the two",
       [](Of b) { b.write("de.lproj/Installer.png", b.read("Caution.png")); }},
      {"pictures.hidden-by", resources + "Caution.png", "one of the two",
       [](Of b) { b.write("Caution.icns", b.read("Installer.icns")); }},
      {"pictures.template", resources + "Product.png", "of your own",
       [](Of b) { b.write("Product.png", readFile(SOURCE_FOLDER "/src/kit/template/Product.png")); }},

      {"window.missing", resources + "CustomInstall.ui", "back", removing("CustomInstall.ui")},
      {"window.damaged", mainWindow, "Designer", editing(window, "</ui>", "")},
      {"window.object", mainWindow + " (dynamicView)", "dynamicView",
       editing(window, "name=\"dynamicView\"", "name=\"view\"")},
      {"window.key", mainWindow + ":4 (mainWindow)", "property", editing(window, "windowTitle", "windowTitel")},
      {"window.key", resources + "CustomInstall.ui:24 (customPathField)", "property",
       editing("CustomInstall.ui", "<string>customPath</string>", "<string>customPaht</string>")},
      {"window.action", resources + "CustomInstall.ui:31 (browseButton)", "action",
       editing("CustomInstall.ui", "browseButtonPressed:", "browse:")},
      {"window.binding", mainWindow + ":10 (productPicture)", "dynamic property",
       editing(window, "\"bindName\"", "\"bindNaem\"")},
      {"window.text", mainWindow + ":15 (stepIndicatorView)", "key", editing(window, "name_steps", "name_stesp")},
      {"window.picture", mainWindow + ":10 (productPicture)", "picture",
       editing(window, "<string>Product<", "<string>Produkt<")},
  };
  return mistakes;
}

// SPDX-License-Identifier: Apache-2.0

#include "install/FileInstallationTest.h"

#include "hosts/ApertureHostModel.h"
#include "hosts/LightRoomHostModel.h"
#include "hosts/PhotoshopHostModel.h"
#include "hosts/UnknownHostModel.h"

namespace {

TEST_F(FileInstallationTest, StagesFlushesAndCommitsAllTogether) {
  writeFile(on("/T/file/inside"), "a folder is in the way");
  const Paths installed = {"/T/file", "/T/plain"};
  install({source("file"), source("plain")});
  for (const std::string& path : installed) EXPECT_EQ(readFile(on(path)), "new") << path;
  EXPECT_EQ(rights_.transaction.steps,
            (Paths{"stage /T/file", "stage /T/plain", "flush", "commit 0 1", "flush", "finish"}));
  EXPECT_EQ(controller_.installedPaths(), installed);
  EXPECT_EQ(log_.lines, (Paths{"Installing file", "removing existing file...", "Installing plain"}));
}

TEST_F(FileInstallationTest, ComparesBundlesByVersion) {
  const std::tuple<std::string, std::string, bool> cases[] = {
      {"3.1", "3.1", true},        {"1.1000", "2.1", false},   {"3.9", "3.10", false},
      {"3.1", "", true},           {"", "3.1", false},         {"", "", false},
      {"12345.1", "1234.6", true}, {"3b2.1", "0.2", false},    {"1.2.3.4.5.6", "1.2.3.4.5.7", false},
      {"3.0.9", "3.1", true},      {"1.20240101", "2.1", true}};  // more digits win
  for (const auto& [offered, there, isReplaced] : cases) {
    const auto info = [](const std::string& version) {
      return version.empty() ? Texts() : Texts{{"CFBundleVersion", version}};
    };
    makeBundle(on("/T/X.plugin"), info(there));
    writeFile(on("/T/X.plugin/old"), "old");
    makeBundle(machine_.payload("X.plugin"), info(offered));
    install({machine_.payload("X.plugin")}, /*isBundle=*/true, /*alwaysInstall=*/false);
    EXPECT_EQ(readFile(on("/T/X.plugin/old")) != "old", isReplaced) << offered << " over " << there;
  }
}

TEST_F(FileInstallationTest, ComparesFilesByDate) {
  const Paths sources = {source("a"),     source("newer"), source("missing"),
                         source("older"), source("equal"), source("empty")};
  const std::pair<std::string, int> ages[] = {{"newer", 1}, {"older", -1}, {"equal", 0}};
  for (const auto& [name, seconds] : ages) {
    writeFile(on("/T/" + name), "old");
    const auto time = fs::last_write_time(machine_.payload(name)) + std::chrono::seconds(seconds);
    fs::last_write_time(on("/T/" + name), time);
  }
  fs::create_directories(on("/T/empty"));
  install(sources, /*isBundle=*/false, /*alwaysInstall=*/false);
  EXPECT_EQ(namesIn(on("/T")), "a empty equal newer older") << "nothing is added beside a file that is newer";
  const Texts contents = {{"newer", "old"}, {"older", "new"}, {"equal", "new"}, {"empty", "new"}};
  for (const auto& [name, content] : contents) EXPECT_EQ(readFile(on("/T/" + name)), content) << name;
}

TEST_F(FileInstallationTest, MakesFoldersWithToolsWhereTheUserMayNot) {
  controller_.ensureDirExists("/New/Deep/Parent/Folder");
  files_.fail(Call::createDirectory, std::errc::permission_denied, 2);
  rights_.launches.clear();
  controller_.ensureDirExists("/Other/Deep/Parent/Folder");
  Paths launches;
  for (const std::string folder : {"/Other/Deep/Parent", "/Other/Deep/Parent/Folder"}) {
    launches.push_back("/bin/mkdir|-m775|-p|" + folder);
    launches.push_back("/usr/sbin/chown|-R|" + owner_ + "|" + folder);
  }
  EXPECT_EQ(rights_.launches, launches);
  for (const std::string top : {"/New", "/Other"}) {
    EXPECT_EQ(modeOf(on(top + "/Deep/Parent/Folder")), "775") << top;
    EXPECT_EQ(modeOf(on(top + "/Deep/Parent")), "775") << top;
    EXPECT_EQ(modeOf(on(top + "/Deep")), "755") << top;
  }
}

TEST_F(FileInstallationTest, CopiesAHostsPayloadToWhereItsFoldersAre) {
  for (const char* const name :
       {"PHOTOSHOP/Presets/a.jsx", "PHOTOSHOP_PLUGINS/.hidden/b", "PHOTOSHOP_PLUGINS/deep/c", "LIGHTROOM/e.lua"}) {
    source(name);
  }
  makeBundle(machine_.payload("PHOTOSHOP_PLUGINS/Corvane/D.plugin"), {});
  machine_.addPhotoshop("Adobe Photoshop CS6");
  const HostList hosts = {PhotoshopHostModel::initWithHostName(platform_, "Adobe Photoshop CS6"),
                          LightRoomHostModel::initWithHostName(platform_, "Adobe Lightroom"),
                          UnknownHostModel::initWithPlugInPath(platform_, "/Mine/"),
                          UnknownHostModel::initWithPlugInPath(platform_, ""),
                          ApertureHostModel::initWithHostName(platform_, "Aperture")};
  for (const auto& host : hosts) controller_.installFiles(host);
  const std::string photoshop = "/Applications/Adobe Photoshop CS6/";
  EXPECT_EQ(controller_.installedPaths(),
            (Paths{photoshop + "Presets/a.jsx", photoshop + "Plug-Ins/Corvane/D.plugin", photoshop + "Plug-Ins/deep/c",
                   machine_.home() + "/Library/Application Support/Adobe/Lightroom/e.lua", "/Mine/Corvane/D.plugin",
                   "/Mine/deep/c"}));
}

TEST_F(FileInstallationTest, TouchesNoMakersFoldersWithoutAName) {
  writeFile(machine_.inBundle("Resources/en.lproj/installer.strings"), "");
  source("HD/Library/Application Support/Corvane/Dunmore 3/Presets/a");
  const fs::path mine = on("/Library/Application Support/Corvane/Dunmore 3/mine");
  const fs::path theirs = machine_.inLibrary("Application Support/Other/manifest.xml");
  for (const fs::path& file : {mine, theirs}) writeFile(file, "");
  controller_.install({}, /*shouldConfigureLumatraExternalEditors=*/true);
  EXPECT_TRUE(fs::exists(mine));
  EXPECT_TRUE(fs::exists(theirs));
  EXPECT_FALSE(controller_.fileOpErrorOccurred()) << "the rest goes on";
}

}  // namespace

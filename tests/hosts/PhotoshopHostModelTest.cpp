// SPDX-License-Identifier: Apache-2.0

#include "hosts/PhotoshopHostModel.h"
#include "support/TestMachine.h"

namespace {

using namespace std::string_literals;

class PhotoshopHostModelTest : public MachineTest {
 protected:
  std::shared_ptr<PhotoshopHostModel> named(const std::string& name) {
    return PhotoshopHostModel::initWithHostName(platform_, name);
  }
  std::shared_ptr<PhotoshopHostModel> withPaths(const std::string& name, std::string_view content) {
    writeFile(on("/Paths/" + name + " Paths"), content);
    return PhotoshopHostModel::initWithPathsFilePath(platform_, "/Paths/" + name + " Paths");
  }
};

TEST_F(PhotoshopHostModelTest, ReadsItsVersionFromItsName) {
  const auto summary = [](const PhotoshopHostModel& host) {
    return std::to_string(host.version()) + "." + std::to_string(host.minorVersion()) + " sorts as " +
           std::to_string(host.displaySortOrder()) + (host.shouldInstallScripts() ? ", scripts" : "") +
           (host.shouldInstallPanels() ? ", panels" : "") + (host.isElements() ? ", Elements" : "");
  };
  const std::pair<const char*, const char*> cases[] = {
      {"Adobe Photoshop CS6", "6.0 sorts as 994, scripts, panels"},
      {"Adobe Photoshop CS2", "2.0 sorts as 998"},
      {"Adobe Photoshop CC", "7.0 sorts as 993, scripts, panels"},
      {"Adobe Photoshop CC 2015.5", "2015.5 sorts as 4294966281, scripts, panels"},
      {"Adobe Photoshop CC 试用版", "7.0 sorts as 993, scripts, panels"},
      {"Adobe Photoshop CC 试用版 2019", "0.0 sorts as 1000, scripts"},
      {"Adobe Photoshop CC (Beta).7", "0.7 sorts as 1000, scripts"},
      {"Adobe Photoshop 2020", "0.0 sorts as 1000, scripts"},
      {"Adobe Photoshop Elements 11", "11.0 sorts as 2989, panels, Elements"},
      {"Adobe Photoshop Elements", "0.0 sorts as 3000, Elements"}};
  for (const auto& [name, expected] : cases) {
    EXPECT_EQ(summary(*withPaths(name, "")), expected) << name;
  }
}

TEST_F(PhotoshopHostModelTest, TakesItsFoldersFromAPathsFile) {
  writeFile(on("/PS/Photoshop.app/x"), "");
  const auto host = withPaths("Adobe Photoshop CS6", "/PS\0/PS/Filters\0rest"s);
  EXPECT_TRUE(host->hostIsInstalled());
  EXPECT_EQ(host->appPath() + ", " + host->plugInPath(), "/PS, /PS/Filters");
  EXPECT_EQ(host->scriptsPath(), "/PS/Presets/Scripts");
  EXPECT_EQ(host->panelsPath(), "/PS/Filters/Panels");

  EXPECT_EQ(withPaths("Adobe Photoshop CS6", "/PS\0/PS/Fil"s)->plugInPath(), "/PS/Fil") << "no terminator";
  EXPECT_EQ(withPaths("Adobe Photoshop CS6", "/PS////\0"s)->plugInPath(), "/PS/Plug-Ins") << "8 bytes, one field";
  EXPECT_EQ(withPaths("Adobe Photoshop CS6", "\0/PS\0/Filters\0"s)->plugInPath(), "/Filters") << "not its first byte";
  EXPECT_EQ(withPaths("Adobe Photoshop CC 2015", "/PS\0/PS/Filters\0"s)->plugInPath(), "/PS/Filters");
  for (const char* const name : {"Adobe Photoshop CC 2015.5", "Adobe Photoshop CC 2018"}) {
    const auto recent = withPaths(name, "/PS\0/PS/Filters\0"s);
    EXPECT_EQ(recent->plugInPath(), "/Library/Application Support/Adobe/Plug-Ins/CC/") << name;
  }
}

TEST_F(PhotoshopHostModelTest, ToleratesAnyBytesInPathsFiles) {
  writeFile(on("/PS/Photoshop.app/x"), "");
  for (const auto& content :
       {""s, "\0/PS\0/PS/Filters\0"s, "\xFF\xFE/PS\0/PS/Filters\0"s, "PS relative\0Filters\0"s, "/\0/PS/Filters\0"s,
        "/PS\0\xFF\xFF\xFF\xFF\xFF\0"s, "/PS/Photoshop.app/x\0/x\0"s, std::string(5'000'000, '/')}) {
    EXPECT_FALSE(withPaths("Adobe Photoshop CS6", content)->hostIsInstalled()) << content.substr(0, 40);
  }
  EXPECT_EQ(log_.count("Could not parse paths file: too short: /Paths/Adobe Photoshop CS6 Paths"), 1);
  EXPECT_TRUE(machine_.clock.sleeps.empty());
  // A recent version needs no second field.
  EXPECT_TRUE(withPaths("Adobe Photoshop CC 2018", "/PS\0\xFF\xFF\xFF\xFF"s)->hostIsInstalled());
}

TEST_F(PhotoshopHostModelTest, IsFoundByItsNameOnceItsPathsFileCanBeRead) {
  const auto recent = named("Adobe Photoshop CC 2019");
  EXPECT_FALSE(recent->hostIsInstalled());
  EXPECT_EQ(recent->scriptsPath(), "/Applications/Adobe Photoshop CC 2019/Presets/Scripts");
  EXPECT_EQ(recent->plugInPath(), "/Library/Application Support/Adobe/Plug-Ins/CC/");
  machine_.addPhotoshop("Adobe Photoshop CC 2019");
  EXPECT_TRUE(named("Adobe Photoshop CC 2019")->hostIsInstalled());
  EXPECT_TRUE(machine_.clock.sleeps.empty());

  const auto missing = named("Adobe Photoshop CS6");
  EXPECT_EQ(machine_.clock.sleeps, std::vector(3, std::chrono::microseconds(500'000)));
  EXPECT_FALSE(missing->hostIsInstalled());
  EXPECT_EQ(missing->appPath() + missing->plugInPath() + missing->scriptsPath() + missing->panelsPath(), "");
  EXPECT_EQ(log_.count("Adobe Photoshop CS6 Paths: No such file or directory"), 3);
  machine_.clock.whileSleeping = [&] {
    if (machine_.clock.sleeps.size() == 6) machine_.addPhotoshop("Adobe Photoshop CS6");
  };
  EXPECT_EQ(named("Adobe Photoshop CS6")->plugInPath(), "/Applications/Adobe Photoshop CS6/Plug-Ins");
}

}  // namespace

#include "hosts/PhotoshopHostModel.h"
#include "support/TestMachine.h"

namespace {

using namespace std::string_literals;

class PhotoshopHostModelTest : public testing::Test {
 protected:
  std::shared_ptr<PhotoshopHostModel> named(const std::string& name) {
    return PhotoshopHostModel::initWithHostName(machine_.platform, name);
  }
  std::shared_ptr<PhotoshopHostModel> withPaths(const std::string& name, std::string_view content) {
    writeFile(machine_.onVolume("/Paths/" + name + " Paths"), content);
    return PhotoshopHostModel::initWithPathsFilePath(machine_.platform, "/Paths/" + name + " Paths");
  }

  TestMachine machine_;
};

TEST_F(PhotoshopHostModelTest, ReadsItsVersionFromItsName) {
  struct Case {
    const char* name;
    std::uint32_t version, minorVersion;
    std::uint64_t sortOrder;
    bool scripts, panels, elements;
  };
  for (const Case& expected :
       std::initializer_list<Case>{{"Adobe Photoshop CS6", 6, 0, 994, true, true, false},
                                   {"Adobe Photoshop CS5.1", 5, 0, 995, true, true, false},
                                   {"Adobe Photoshop CS2", 2, 0, 998, false, false, false},
                                   {"Adobe Photoshop CS", 0, 0, 1000, true, false, false},
                                   {"Adobe Photoshop CC", 7, 0, 993, true, true, false},
                                   {"Adobe Photoshop CC 14", 7, 0, 993, true, true, false},
                                   {"Adobe Photoshop CC 2015", 2015, 0, 4294966281, true, true, false},
                                   {"Adobe Photoshop CC 2015.5", 2015, 5, 4294966281, true, true, false},
                                   {"Adobe Photoshop CC 2019", 2019, 0, 4294966277, true, true, false},
                                   {"Adobe Photoshop CC (Beta).7", 0, 7, 1000, true, false, false},
                                   {"Adobe Photoshop 2020", 0, 0, 1000, true, false, false},
                                   {"Adobe Photoshop Elements 11", 11, 0, 2989, false, true, true},
                                   {"Adobe Photoshop Elements", 0, 0, 3000, false, false, true},
                                   {"Elements", 0, 0, 1000, false, false, false}}) {
    const auto host = withPaths(expected.name, "");
    EXPECT_EQ(host->hostName(), expected.name);
    EXPECT_EQ(host->version(), expected.version) << expected.name;
    EXPECT_EQ(host->minorVersion(), expected.minorVersion) << expected.name;
    EXPECT_EQ(host->displaySortOrder(), expected.sortOrder) << expected.name;
    EXPECT_EQ(host->shouldInstallScripts(), expected.scripts) << expected.name;
    EXPECT_EQ(host->shouldInstallPanels(), expected.panels) << expected.name;
    EXPECT_EQ(host->isElements(), expected.elements) << expected.name;
    EXPECT_EQ(host->photoshopVersionFromDisplayName(), expected.elements ? 0 : expected.version) << expected.name;
    EXPECT_TRUE(host->hostIsSelected());
  }
}

TEST_F(PhotoshopHostModelTest, TakesItsFoldersFromAPathsFile) {
  writeFile(machine_.onVolume("/PS/Photoshop.app/x"), "");
  const auto host = withPaths("Adobe Photoshop CS6", "/PS\0/PS/Filters\0rest"s);
  EXPECT_TRUE(host->hostIsInstalled());
  EXPECT_EQ(host->appPath(), "/PS");
  EXPECT_EQ(host->plugInPath(), "/PS/Filters");
  EXPECT_EQ(host->scriptsPath(), "/PS/Presets/Scripts");
  EXPECT_EQ(host->panelsPath(), "/PS/Filters/Panels");

  EXPECT_EQ(withPaths("Adobe Photoshop CS6", "/PS\0/PS/Fil"s)->plugInPath(), "/PS/Fil") << "no terminator";
  EXPECT_EQ(withPaths("Adobe Photoshop CS6", "/PS/////"s)->plugInPath(), "/PS/Plug-Ins") << "8 bytes, one field";
  EXPECT_EQ(withPaths("Adobe Photoshop CS6", "/PS////\0"s)->plugInPath(), "/PS/Plug-Ins");
  EXPECT_EQ(withPaths("Adobe Photoshop CC 2015", "/PS\0/PS/Filters\0"s)->plugInPath(), "/PS/Filters");
  constexpr const char* shared = "/Library/Application Support/Adobe/Plug-Ins/CC/";
  for (const char* const name : {"Adobe Photoshop CC 2015.5", "Adobe Photoshop CC 2018"}) {
    const auto recent = withPaths(name, "/PS\0/PS/Filters\0"s);
    EXPECT_EQ(recent->plugInPath(), shared) << name;
    EXPECT_EQ(recent->panelsPath(), "/Library/Application Support/Adobe/Plug-Ins/CC/Panels") << name;
  }
}

TEST_F(PhotoshopHostModelTest, SurvivesPathsFilesOfAnyBytes) {
  writeFile(machine_.onVolume("/PS/Photoshop.app/x"), "");
  writeFile(machine_.onVolume("/Empty/readme"), "");
  for (const auto& content :
       {"/PS\0/PS"s, ""s, "\0\0\0\0\0\0\0\0\0\0"s, "\0/PS\0/PS/Filters\0"s, "\xFF\xFE/PS\0/PS/Filters\0"s,
        "PS relative\0Filters\0"s, "/Empty\0/PS/Filters\0"s, "/PS\0\xFF\xFF\xFF\xFF\xFF\0"s,
        "/PS/Photoshop.app/x\0/x\0"s, std::string(5'000'000, '/')}) {
    EXPECT_FALSE(withPaths("Adobe Photoshop CS6", content)->hostIsInstalled()) << content.substr(0, 40);
  }
  EXPECT_TRUE(machine_.log.contains("Could not parse paths file: too short: /Paths/Adobe Photoshop CS6 Paths"));
  EXPECT_TRUE(machine_.clock.sleeps.empty());
  EXPECT_TRUE(withPaths("Adobe Photoshop CC 2018", "/PS\0\xFF\xFF\xFF\xFF"s)->hostIsInstalled())
      << "a recent version needs no second field";
}

TEST_F(PhotoshopHostModelTest, TriesAnUnreadablePathsFileFourTimes) {
  writeFile(machine_.onVolume("/PS/Photoshop.app/x"), "");
  machine_.files.fail(FaultyFileSystem::Call::readFile, std::errc::permission_denied, 3);
  EXPECT_TRUE(withPaths("Adobe Photoshop CS6", "/PS\0/PS/Filters\0"s)->hostIsInstalled());
  EXPECT_EQ(machine_.clock.sleeps, std::vector(3, std::chrono::microseconds(500'000)));
  EXPECT_EQ(machine_.log.count("Could not open paths file: /Paths/Adobe Photoshop CS6 Paths: Permission denied"), 3);

  const auto missing = named("Adobe Photoshop CS6");
  EXPECT_EQ(machine_.clock.sleeps.size(), 6U) << "and gives up after the fourth";
  EXPECT_FALSE(missing->hostIsInstalled());
  EXPECT_EQ(missing->appPath() + missing->plugInPath() + missing->scriptsPath() + missing->panelsPath(), "");
}

TEST_F(PhotoshopHostModelTest, KnowsWhereTheNewestVersionsLie) {
  const auto missing = named("Adobe Photoshop CC 2019");
  EXPECT_FALSE(missing->hostIsInstalled());
  EXPECT_EQ(missing->appPath(), "/Applications/Adobe Photoshop CC 2019");
  EXPECT_EQ(missing->scriptsPath(), "/Applications/Adobe Photoshop CC 2019/Presets/Scripts");
  EXPECT_EQ(missing->plugInPath(), "/Library/Application Support/Adobe/Plug-Ins/CC/");
  machine_.addPhotoshop("Adobe Photoshop CC 2019");
  EXPECT_TRUE(named("Adobe Photoshop CC 2019")->hostIsInstalled());
  machine_.addPhotoshop("Adobe Photoshop CS6");
  EXPECT_EQ(named("Adobe Photoshop CS6")->plugInPath(), "/Applications/Adobe Photoshop CS6/Plug-Ins");
  EXPECT_TRUE(machine_.clock.sleeps.empty());
}

}  // namespace

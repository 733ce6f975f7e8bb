#include "install/BundleVersion.h"
#include "install/paths/PlugInFilesModel.h"
#include "support/TestMachine.h"

namespace {

using PlugInFilesModelTest = MachineTest;

TEST_F(PlugInFilesModelTest, FindsTheUsersSettings) {
  const PlugInFilesModel paths(platform_);
  const std::string usual = machine_.home() + "/Library/Application Support/Corvane/Dunmore 3";
  EXPECT_EQ(paths.userSettingsPath(), usual);
  writeFile(machine_.inLibrary("Preferences/com.corvane.dunmore3.plist"),
            propertyListOf({{"User Folder", "/Users/Shared"}}));
  EXPECT_EQ(paths.userSettingsPath(), usual) << "nothing is there";
  fs::create_directories(on("/Users/Shared/Corvane/Dunmore 3"));
  EXPECT_EQ(paths.userSettingsPath(), "/Users/Shared/Corvane/Dunmore 3");
}

TEST(BundleVersion, IsOneNumberOfAllComponents) {
  const std::pair<const char*, const char*> versions[] = {
      {"3.1.2", "300010002"}, {"12345.1", "123450001"},
      {"3b2.1", "1"},         {"", "0"},
      {"0.0007", "7"},        {"1.20240101123456789", "120240101123456789"}};
  for (const auto& [version, digits] : versions) EXPECT_EQ(BundleVersion::parse(version).digits(), digits) << version;
  const auto older = [](const char* a, const char* b) { return BundleVersion::parse(a) < BundleVersion::parse(b); };
  EXPECT_TRUE(older("3.1", "3.0.9")) << "more components win";
  EXPECT_TRUE(older("3.9", "3.10"));
  EXPECT_TRUE(older("1.2.3.4.5.6", "1.2.3.4.5.7")) << "beyond what a machine word holds";
  EXPECT_FALSE(older("3.1", "3.1"));
}

}  // namespace

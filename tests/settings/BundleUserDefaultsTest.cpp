// SPDX-License-Identifier: Apache-2.0

#include "settings/BundleUserDefaults.h"
#include "support/TestMachine.h"

namespace {

class BundleUserDefaultsTest : public MachineTest {
 protected:
  [[nodiscard]] std::string text(const char* key) const { return defaults_.objectForKey(key).text(); }

  BundleUserDefaults defaults_ = BundleUserDefaults::initWithPersistentDomainName(platform_, "com.corvane.test");
  const fs::path file_ = machine_.inLibrary("Preferences/com.corvane.test.plist");
};

TEST_F(BundleUserDefaultsTest, FallsBackToTheLastRegisteredDefaults) {
  EXPECT_TRUE(defaults_.objectForKey("folder").isNone());
  defaults_.registerDefaults({{"folder", "/first"}, {"language", "de"}});
  defaults_.registerDefaults({{"folder", "/registered"}});
  EXPECT_EQ(text("folder"), "/registered");
  EXPECT_TRUE(defaults_.objectForKey("language").isNone()) << "defaults are replaced as a whole";

  defaults_.setObject("/stored", "folder");
  EXPECT_EQ(text("folder"), "/stored");
  EXPECT_TRUE(defaults_.synchronize());
  defaults_.removeObjectForKey("folder");
  EXPECT_EQ(text("folder"), "/registered");
  EXPECT_TRUE(defaults_.synchronize());
  EXPECT_EQ(readFile(file_).find("folder"), std::string::npos) << "neither the value nor the default is stored";
}

TEST_F(BundleUserDefaultsTest, WritesItsChangesWhenTheProgramTerminates) {
  defaults_.setObject("/chosen", "folder");
  EXPECT_FALSE(fs::exists(file_));
  platform_.notifications.post({.name = std::string(applicationWillTerminateNotification)});
  EXPECT_NE(readFile(file_).find("/chosen"), std::string::npos);
}

}  // namespace

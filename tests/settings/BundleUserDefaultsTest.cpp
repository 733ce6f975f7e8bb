#include "settings/BundleUserDefaults.h"
#include "support/TestMachine.h"

namespace {

TEST(BundleUserDefaults, PrefersStoredValuesToRegisteredOnes) {
  TestMachine machine;
  auto store = BundleUserDefaults::initWithPersistentDomainName(machine.platform, "com.corvane.dunmore3");
  EXPECT_TRUE(store.objectForKey("User Folder").isNone());
  store.registerDefaults({{"old", "old"}, {"User Folder", "/registered"}});
  store.registerDefaults({{"User Folder", "/registered"}});
  EXPECT_TRUE(store.objectForKey("old").isNone()) << "the first registration is gone";
  EXPECT_EQ(store.objectForKey("User Folder"), Value("/registered"));
  store.setObject("/stored", "User Folder");
  EXPECT_EQ(store.objectForKey("User Folder"), Value("/stored"));
  store.removeObjectForKey("User Folder");
  EXPECT_EQ(store.objectForKey("User Folder"), Value("/registered"));
}

TEST(BundleUserDefaults, WritesItsDomainWhenTheProgramEnds) {
  TestMachine machine;
  const fs::path file = machine.onVolume(machine.home() + "/Library/Preferences/com.corvane.installer.plist");
  auto store = BundleUserDefaults::initWithPersistentDomainName(machine.platform, installerPreferencesDomain);
  store.setObject("/here", "customPath");
  EXPECT_FALSE(fs::exists(file));
  const auto moved = std::move(store);
  machine.platform.notifications.post({std::string(applicationWillTerminateNotification)});
  EXPECT_NE(readFile(file).find("<string>/here</string>"), std::string::npos);
}

}  // namespace

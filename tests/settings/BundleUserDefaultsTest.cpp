#include "settings/BundleUserDefaults.h"
#include "support/TestMachine.h"

namespace {

TEST(BundleUserDefaults, PrefersStoredValuesAndWritesThemWhenTheProgramEnds) {
  TestMachine machine;
  auto store = BundleUserDefaults::initWithPersistentDomainName(machine.platform, installerPreferencesDomain);
  store.registerDefaults({{"old", "old"}});
  store.registerDefaults({{"customPath", "/registered"}});
  EXPECT_TRUE(store.objectForKey("old").isNone()) << "the first registration is gone";
  store.setObject("/stored", "customPath");
  EXPECT_EQ(store.objectForKey("customPath"), Value("/stored"));
  store.removeObjectForKey("customPath");
  EXPECT_EQ(store.objectForKey("customPath"), Value("/registered"));

  store.setObject("/here", "customPath");
  const fs::path file = machine.inLibrary("Preferences/com.corvane.installer.plist");
  EXPECT_FALSE(fs::exists(file));
  const auto moved = std::move(store);
  machine.platform.notifications.post({std::string(applicationWillTerminateNotification)});
  EXPECT_NE(readFile(file).find("<string>/here</string>"), std::string::npos);
}

}  // namespace

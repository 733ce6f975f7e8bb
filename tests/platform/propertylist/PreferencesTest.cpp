// SPDX-License-Identifier: Apache-2.0

#include "platform/propertylist/PropertyList.h"
#include "platform/propertylist/PropertyListPreferences.h"
#include "support/TestMachine.h"

namespace {

class PreferencesTest : public MachineTest {
 protected:
  Value copied(const char* key) { return preferences_.copyAppValue(key, domain_); }
  [[nodiscard]] Value stored(const char* key) const {
    const auto list = readPropertyList(readFile(file_));
    return list ? entryOf(*list, key) : Value("(unreadable)");
  }

  const std::string domain_ = "com.corvane.installer";
  const fs::path file_ = machine_.inLibrary("Preferences/com.corvane.installer.plist");
  PropertyListPreferences preferences_{files_, platform_.folders, log_};
};

TEST_F(PreferencesTest, KeepsChangesInMemoryUntilItSynchronizes) {
  writeFile(file_, propertyListOf({{"customPath", "/old"}, {"other", "theirs"}}));
  preferences_.setAppValue("customPath", "/new", domain_);
  EXPECT_EQ(copied("customPath"), Value("/new"));
  EXPECT_EQ(stored("customPath"), Value("/old"));

  EXPECT_TRUE(preferences_.synchronize(domain_));
  EXPECT_EQ(stored("customPath"), Value("/new"));
  EXPECT_EQ(stored("other"), Value("theirs")) << "what others wrote stays";
  EXPECT_EQ(modeOf(file_), "600");

  fs::remove_all(on(machine_.home()));
  PropertyListPreferences(files_, platform_.folders, log_).setAppValue("customPath", "/here", domain_);
  EXPECT_EQ(stored("customPath"), Value("/here"));
}

TEST_F(PreferencesTest, WritesEachChangeOnce) {
  {
    PropertyListPreferences preferences(files_, platform_.folders, log_);
    preferences.setAppValue("customPath", "/ours", domain_);
    EXPECT_TRUE(preferences.synchronize(domain_));
    writeFile(file_, propertyListOf({{"customPath", "/another program's"}}));
    EXPECT_EQ(preferences.copyAppValue("customPath", domain_), Value("/another program's"));
  }
  EXPECT_EQ(stored("customPath"), Value("/another program's")) << "not overwritten at the end";
}

TEST_F(PreferencesTest, NeverOverwritesAMalformedFile) {
  for (const auto* const damaged : {"garbage", "<plist><array/></plist>", "bplist00"}) {
    writeFile(file_, damaged);
    preferences_.setAppValue("customPath", "/new", domain_);
    EXPECT_FALSE(preferences_.synchronize(domain_));
    EXPECT_EQ(readFile(file_), damaged);
    EXPECT_EQ(copied("customPath"), Value("/new")) << "still in memory";
  }
  for (const char* const key : {"other", "another"}) EXPECT_TRUE(copied(key).isNone()) << key;
  EXPECT_EQ(log_.count("Could not read preferences"), 3) << "one line for each kind of damage";
  writeFile(file_, "");
  EXPECT_TRUE(preferences_.synchronize(domain_)) << "as a program leaves it that was stopped";
  EXPECT_EQ(stored("customPath"), Value("/new"));
}

}  // namespace

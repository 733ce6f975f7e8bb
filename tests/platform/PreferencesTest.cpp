#include "platform/posix/PropertyList.h"
#include "platform/posix/PropertyListPreferences.h"
#include "support/TestMachine.h"

namespace {

class PreferencesTest : public testing::Test {
 protected:
  [[nodiscard]] fs::path file() const {
    return machine_.onVolume(machine_.home() + "/Library/Preferences/com.corvane.installer.plist");
  }
  [[nodiscard]] Value stored(const char* key) const {
    const auto list = readPropertyList(readFile(file()));
    return list ? entryOf(*list, key) : Value("(unreadable)");
  }

  const std::string domain_ = "com.corvane.installer";
  TestMachine machine_;
  PropertyListPreferences preferences_{machine_.files, machine_.platform.folders, machine_.log};
};

TEST_F(PreferencesTest, KeepsChangesInMemoryUntilTheyAreWritten) {
  writeFile(file(),
            "<plist><dict><key>customPath</key><string>/old</string><key>other</key><real>2.5</real></dict></"
            "plist>");
  EXPECT_EQ(preferences_.copyAppValue("customPath", domain_), Value("/old"));
  preferences_.setAppValue("customPath", "/new", domain_);
  preferences_.setAppValue("gone", "x", domain_);
  preferences_.setAppValue("gone", Value(), domain_);
  EXPECT_EQ(preferences_.copyAppValue("customPath", domain_), Value("/new"));
  EXPECT_EQ(stored("customPath"), Value("/old"));

  EXPECT_TRUE(preferences_.synchronize(domain_));
  EXPECT_EQ(stored("customPath"), Value("/new"));
  EXPECT_EQ(stored("other"), Value(2.5)) << "what others wrote stays";
  EXPECT_EQ(modeOf(file()), "600");
  preferences_.setAppValue("customPath", Value(), domain_);
  EXPECT_TRUE(preferences_.copyAppValue("customPath", domain_).isNone());
}

TEST_F(PreferencesTest, WritesWhatIsLeftAtItsEnd) {
  fs::remove_all(machine_.onVolume(machine_.home()));
  {
    PropertyListPreferences short_(machine_.files, machine_.platform.folders, machine_.log);
    short_.setAppValue("customPath", "/here", domain_);
  }
  EXPECT_EQ(stored("customPath"), Value("/here"));
}

TEST_F(PreferencesTest, FallsBackToTheValuesForAllUsers) {
  const fs::path all = machine_.onVolume("/Library/Preferences/com.corvane.installer.plist");
  writeFile(all, "<plist><dict><key>customPath</key><string>/all</string></dict></plist>");
  EXPECT_EQ(preferences_.copyAppValue("customPath", domain_), Value("/all"));
  preferences_.setAppValue("customPath", "/mine", domain_);
  EXPECT_EQ(preferences_.copyAppValue("customPath", domain_), Value("/mine"));
  preferences_.setAppValue("customPath", Value(), domain_);
  EXPECT_EQ(preferences_.copyAppValue("customPath", domain_), Value("/all"));
  EXPECT_TRUE(preferences_.copyAppValue("customPath", "../com.corvane.installer").isNone());
}

TEST_F(PreferencesTest, NeverOverwritesWhatItCannotRead) {
  for (const auto* const damaged : {"garbage", "<plist><array/></plist>", "bplist00"}) {
    writeFile(file(), damaged);
    preferences_.setAppValue("customPath", "/new", domain_);
    EXPECT_FALSE(preferences_.synchronize(domain_));
    EXPECT_EQ(readFile(file()), damaged);
    EXPECT_EQ(preferences_.copyAppValue("customPath", domain_), Value("/new")) << "still in memory";
  }
  machine_.files.fail(FaultyFileSystem::Call::createFile, std::errc::no_space_on_device);
  writeFile(file(), "<plist><dict/></plist>");
  EXPECT_FALSE(preferences_.synchronize(domain_));
  EXPECT_TRUE(machine_.log.contains("No space left"));
  EXPECT_TRUE(preferences_.synchronize(domain_));
  EXPECT_EQ(stored("customPath"), Value("/new"));
}

}  // namespace

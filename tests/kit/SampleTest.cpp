// SPDX-License-Identifier: Apache-2.0

#include "foundation/StringsTable.h"
#include "kit/CheckBundle.h"
#include "platform/SystemPlatform.h"
#include "support/TestMachine.h"

namespace {
TEST(SampleTest, IsCorrectInAllItsLanguages) {
  const auto sample = makePlatformForMaker(INSTALLER_BUNDLE);
  for (const Finding& finding : checkBundle((*sample)->platform())) {
    ADD_FAILURE() << finding.id << " " << shownPlace(finding.place) << ": " << finding.what;
  }
  const auto isLanguage = [](const auto& entry) { return entry.path().extension() == ".lproj"; };
  EXPECT_EQ(std::ranges::count_if(fs::directory_iterator(INSTALLER_BUNDLE "/Contents/Resources"), isLanguage), 17);
}

TEST(SampleTest, NamesTheProductInOneFile) {
  const fs::path contents = INSTALLER_BUNDLE "/Contents";
  const fs::path configuration = contents / "Resources/en.lproj/installer.strings";
  const auto configured = parseStringsTable(readFile(configuration)).texts;
  std::vector<fs::path> others = {contents / "Info.plist"};
  for (auto entry = fs::recursive_directory_iterator(contents / "Resources"); entry != end(entry); ++entry) {
    if (entry->path().filename() == "files") entry.disable_recursion_pending();
    if (entry->is_regular_file() && entry->path() != configuration) others.push_back(entry->path());
  }
  EXPECT_GT(others.size(), 50U);
  for (const char* const key : {"company_name", "product_name"}) {
    ASSERT_NE(configured.at(key), "");
    for (const fs::path& file : others) {
      EXPECT_EQ(readFile(file).find(configured.at(key)), std::string::npos) << file << " says " << configured.at(key);
    }
  }
}

}  // namespace

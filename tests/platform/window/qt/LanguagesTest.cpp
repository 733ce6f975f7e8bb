// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <regex>

#include "foundation/RichText.h"
#include "foundation/StringsTable.h"
#include "support/TestMachine.h"

namespace {

/// The languages of the bundle but English.
std::vector<std::string> languagesOfBundle() {
  std::vector<std::string> languages;
  for (const auto& folder : fs::directory_iterator(INSTALLER_BUNDLE "/Contents/Resources")) {
    const fs::path name = folder.path().filename();
    if (name.extension() == ".lproj" && name != "en.lproj") languages.push_back(name.stem().string());
  }
  return languages;
}

const std::vector<std::string> translations = languagesOfBundle();

fs::path inLanguage(const std::string& language, const std::string& file) {
  return fs::path(INSTALLER_BUNDLE "/Contents/Resources") / (language + ".lproj") / file;
}

auto table(const std::string& language) {
  const auto read = parseStringsTable(readFile(inLanguage(language, "Localizable.strings")));
  EXPECT_EQ(read.problem, "") << language;
  return read.texts;
}

/// In ascending order: a language may need them in another one, and then they are numbered.
std::multiset<std::string> placeholders(const std::string& text) {
  static const std::regex placeholder(R"(%(\d\$)?[@d]|%[A-Z]+%)");
  const std::sregex_iterator first(text.begin(), text.end(), placeholder);
  std::multiset<std::string> found;
  for (auto match = first; match != std::sregex_iterator(); ++match) found.insert(match->str());
  return found;
}

/// Texts of the administrators' tool, which has English ones of its own where a table lacks them.
bool isOfTool(const std::string& key) { return key.starts_with("tool_"); }

TEST(LanguagesTest, EveryTableHasTheKeysAndPlaceholdersOfTheEnglishOne) {
  const auto english = table("en");
  ASSERT_GT(english.size(), 50U);
  ASSERT_GE(translations.size(), 16U);
  for (const std::string& language : translations) {
    const auto texts = table(language);
    for (const auto& [key, text] : texts) EXPECT_TRUE(english.contains(key)) << language << ": " << key;
    for (const auto& [key, text] : english) {
      const auto translated = texts.find(key);
      if (translated == texts.end() && isOfTool(key)) continue;
      ASSERT_NE(translated, texts.end()) << language << " has no " << key;
      EXPECT_EQ(placeholders(translated->second), placeholders(text)) << language << ": " << key;
      EXPECT_EQ(translated->second.empty(), text.empty()) << language << ": " << key;
    }
  }
}

TEST(LanguagesTest, EveryRichTextIsThereAndNamesTheSameThings) {
  for (const char* const name : {"register.rtf", "host_running.rtf", "proceed.rtf", "aperture.rtf"}) {
    const RichText english = parseRichTextFormat(readFile(inLanguage("en", name)));
    EXPECT_FALSE(english.string().empty());
    for (const std::string& language : translations) {
      const RichText text = parseRichTextFormat(readFile(inLanguage(language, name)));
      EXPECT_EQ(text.runs().size(), english.runs().size()) << language << ": " << name;
      const auto wanted = placeholders(english.string());
      const auto found = placeholders(text.string());
      EXPECT_EQ(std::set(found.begin(), found.end()), std::set(wanted.begin(), wanted.end())) << language << name;
    }
  }
  for (const std::string& language : translations)
    EXPECT_GT(readFile(inLanguage(language, "license.txt")).size(), 500U);
}

TEST(LanguagesTest, TheProductIsNamedInOneFile) {
  const fs::path contents = INSTALLER_BUNDLE "/Contents";
  const fs::path configuration = contents / "Resources/en.lproj/installer.strings";
  const auto names = parseStringsTable(readFile(configuration)).texts;
  ASSERT_NE(names.at("company_name"), "");
  ASSERT_NE(names.at("product_name"), "");
  std::vector<fs::path> files = {contents / "Info.plist"};
  for (auto entry = fs::recursive_directory_iterator(contents / "Resources"); entry != end(entry); ++entry) {
    if (entry->path().filename() == "files") entry.disable_recursion_pending();
    if (entry->is_regular_file() && entry->path() != configuration) files.push_back(entry->path());
  }
  EXPECT_GT(files.size(), 50U);
  for (const fs::path& file : files) {
    for (const char* const key : {"company_name", "product_name"}) {
      EXPECT_EQ(readFile(file).find(names.at(key)), std::string::npos) << file << " says " << names.at(key);
    }
  }
}

}  // namespace

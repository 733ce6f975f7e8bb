#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>

#include "platform/posix/PosixUser.h"

namespace {

TEST(User, PrefersTheLanguagesOfTheEnvironment) {
  using Languages = std::vector<std::string>;
  const std::pair<LanguageVariables, Languages> cases[] = {
      {{"fr", nullptr, nullptr, "C.UTF-8"}, {"en"}},
      {{nullptr, nullptr, nullptr, "de_AT.UTF-8"}, {"de-AT", "de", "en"}},
      {{nullptr, "ja_JP", "fr_FR", "de_DE"}, {"ja-JP", "ja", "en"}},
      {{"fr_CA:es", nullptr, "", "en_GB"}, {"fr-CA", "fr", "es", "en-GB", "en"}},
      {{nullptr, nullptr, nullptr, "zh_CN.GB18030"}, {"zh-Hans", "zh", "en"}},
      {{nullptr, nullptr, nullptr, "zh_TW"}, {"zh-Hant", "zh", "en"}}};
  for (const auto& [variables, languages] : cases) EXPECT_EQ(preferredLanguages(variables), languages);
}

TEST(User, IsWhoCalledSudoOrPkexec) {
  ::setenv("SUDO_UID", "65534", 1);
  const UserAccount user = loggedInUser();
  ::setenv("SUDO_UID", "12x", 1);
  const uid_t withGarbage = loggedInUser().id;
  ::unsetenv("SUDO_UID");
  EXPECT_EQ(withGarbage, ::getuid());
  EXPECT_EQ(user.id, ::geteuid() == 0 ? 65534U : ::getuid()) << "only root's environment is believed";

  EXPECT_EQ(userNumber("4711"), 4711U) << "the short name of an account without a name";
  EXPECT_FALSE(userNumber("no such user"));
}

}  // namespace

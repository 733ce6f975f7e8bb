#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>

#include "platform/posix/PosixUser.h"

namespace {

using Languages = std::vector<std::string>;

TEST(User, PrefersTheLanguagesOfTheEnvironment) {
  EXPECT_EQ(preferredLanguages({nullptr, nullptr, nullptr, nullptr}), (Languages{"en"}));
  EXPECT_EQ(preferredLanguages({"fr", nullptr, nullptr, "C.UTF-8"}), (Languages{"en"}));
  EXPECT_EQ(preferredLanguages({nullptr, nullptr, nullptr, "de_AT.UTF-8"}), (Languages{"de-AT", "de", "en"}));
  EXPECT_EQ(preferredLanguages({nullptr, "ja_JP", "fr_FR", "de_DE"}), (Languages{"ja-JP", "ja", "en"}));
  EXPECT_EQ(preferredLanguages({"fr_CA:es", nullptr, "", "en_GB"}), (Languages{"fr-CA", "fr", "es", "en-GB", "en"}));
  EXPECT_EQ(preferredLanguages({nullptr, nullptr, nullptr, "zh_CN.GB18030"}), (Languages{"zh-Hans", "zh", "en"}));
  EXPECT_EQ(preferredLanguages({nullptr, nullptr, nullptr, "zh_TW"}), (Languages{"zh-Hant", "zh", "en"}));
}

TEST(User, IsWhoCalledSudoOrPkexec) {
  ::setenv("SUDO_UID", "65534", 1);
  const UserAccount user = loggedInUser();
  ::setenv("SUDO_UID", "12x", 1);
  const uid_t withGarbage = loggedInUser().id;
  ::unsetenv("SUDO_UID");
  EXPECT_EQ(withGarbage, ::getuid());
  if (::geteuid() == 0) {
    EXPECT_EQ(user.id, 65534U);
    EXPECT_EQ(user.name, "nobody");
  } else {
    EXPECT_EQ(user.id, ::getuid()) << "only root's environment is believed";
  }
}

TEST(User, KnowsAMacsGroups) {
  EXPECT_TRUE(groupNumber("admin"));
  EXPECT_FALSE(groupNumber("no such group"));
  EXPECT_EQ(userNumber("root"), 0U);
  EXPECT_EQ(userNumber("4711"), 4711U) << "the short name of an account without a name";
  EXPECT_FALSE(userNumber("no such user"));
}

}  // namespace

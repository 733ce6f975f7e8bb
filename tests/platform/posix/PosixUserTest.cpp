// SPDX-License-Identifier: Apache-2.0

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "support/HelperProcess.h"

namespace {

/// Number of the logged-in user, as a process of this user sees it that inherits SUDO_UID=1.
uid_t userSeenBy(uid_t user) {
  const pid_t child = ::fork();
  if (child == 0) {
    ::setenv("SUDO_UID", "1", 1);
    const bool isUser = ::setgroups(0, nullptr) == 0 && ::setuid(user) == 0;
    const auto account = loggedInUser();
    ::_exit(!isUser || !account ? 2 : account->id == user ? 0 : account->id == 1 ? 1 : 2);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return WEXITSTATUS(status) == 0 ? user : static_cast<uid_t>(WEXITSTATUS(status));
}

TEST(PosixUserTest, BelievesOnlyRootsEnvironment) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs root, to become somebody else";
  EXPECT_EQ(userSeenBy(0), 1U);
  EXPECT_EQ(userSeenBy(nobody), nobody);
}

}  // namespace

// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "foundation/Result.h"
#include "platform/User.h"

/// An entry of the system's user database.
struct UserAccount {
  uid_t id = 0;
  gid_t group = 0;
  std::string name;
  std::string home;  ///< on this system
};

/// Returns the user who runs this process, or who called sudo or pkexec when the process is root. Fails when the
/// database of accounts cannot be read.
Result<UserAccount> loggedInUser();

/// The user's home folder as a path of the volume with this root: their own on the running system, else one of their
/// name in the volume's folder of users.
[[nodiscard]] std::string homeOnVolume(const std::string& volumeRoot, const UserAccount& account);

class PosixUser : public User {
 public:
  PosixUser(UserAccount account, std::vector<std::string> languages)
      : account_(std::move(account)), languages_(std::move(languages)) {}

  [[nodiscard]] std::string shortName() const override { return account_.name; }
  [[nodiscard]] std::vector<std::string> preferredLanguages() const override { return languages_; }
  [[nodiscard]] const UserAccount& account() const { return account_; }

 private:
  UserAccount account_;
  std::vector<std::string> languages_;
};

/// Returns the number of the user with this name; nothing when there is none.
[[nodiscard]] std::optional<uid_t> userNumber(const std::string& name);

/// Number of the group. "admin" is 80, which it is on every Mac, where the system has no group of that name.
[[nodiscard]] std::optional<gid_t> groupNumber(const std::string& name);

/// The values of LANGUAGE, LC_ALL, LC_MESSAGES and LANG; null where there is none.
struct LanguageVariables {
  const char* language;
  const char* all;
  const char* messages;
  const char* lang;
};

/// Language codes from such values ("de_AT.UTF-8" gives "de-AT" and "de"), weighed as the system's own programs do;
/// English is the last one.
[[nodiscard]] std::vector<std::string> preferredLanguages(const LanguageVariables& variables);

/// Reads the environment of this process.
[[nodiscard]] std::vector<std::string> preferredLanguages();

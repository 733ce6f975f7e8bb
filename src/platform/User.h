// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

/// The logged-in user: who runs the program, or who called sudo or pkexec to run it.
class User {
 public:
  User() = default;
  User(const User&) = delete;
  User& operator=(const User&) = delete;
  virtual ~User() = default;

  [[nodiscard]] virtual std::string shortName() const = 0;

  /// Language codes such as "de" or "zh-Hans", the preferred one first; never empty.
  [[nodiscard]] virtual std::vector<std::string> preferredLanguages() const = 0;
};

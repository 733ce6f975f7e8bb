// SPDX-License-Identifier: Apache-2.0

#include "platform/posix/PosixUser.h"

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <string_view>
#include <system_error>
#include <utility>

#include "foundation/Path.h"
#include "foundation/Text.h"

namespace {

constexpr gid_t adminGroupOnEveryMac = 80;

std::optional<uid_t> parseNumber(std::string_view text) {
  uid_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

/// Returns the caller of sudo or pkexec. Trusts only root's environment: other users can set any variables.
std::optional<uid_t> callerOfElevation() {
  if (::geteuid() != 0) return std::nullopt;
  for (const char* const variable : {"SUDO_UID", "PKEXEC_UID"}) {
    const char* const value = std::getenv(variable);
    if (value == nullptr) continue;
    if (const auto id = parseNumber(value)) return id;
  }
  return std::nullopt;
}

}  // namespace

Result<UserAccount> loggedInUser() {
  const uid_t id = callerOfElevation().value_or(::getuid());
  errno = 0;
  if (const passwd* const entry = ::getpwuid(id)) {
    return UserAccount{id, entry->pw_gid, entry->pw_name, entry->pw_dir};
  }
  // Values of errno that the C library may set for an unknown account.
  constexpr std::array unknown = {0, ENOENT, ESRCH, EBADF, EPERM};
  if (std::ranges::find(unknown, errno) == unknown.end()) {
    return Error::posix(static_cast<std::errc>(errno), "the account of the user");
  }
  // An account without an entry in the database, as in containers: its number serves as its name.
  return UserAccount{id, ::getgid(), std::to_string(id), "/"};
}

std::string homeOnVolume(const std::string& volumeRoot, const UserAccount& account) {
  return volumeRoot == "/" ? account.home : joinPath("/Users", account.name);
}

std::optional<uid_t> userNumber(const std::string& name) {
  if (const passwd* const entry = ::getpwnam(name.c_str())) return entry->pw_uid;
  return parseNumber(name);  // see loggedInUser()
}

std::optional<gid_t> groupNumber(const std::string& name) {
  if (const group* const entry = ::getgrnam(name.c_str())) return entry->gr_gid;
  if (name == "admin") return adminGroupOnEveryMac;
  return std::nullopt;
}

std::vector<std::string> preferredLanguages() {
  return preferredLanguages({.language = std::getenv("LANGUAGE"),
                             .all = std::getenv("LC_ALL"),
                             .messages = std::getenv("LC_MESSAGES"),
                             .lang = std::getenv("LANG")});
}

std::vector<std::string> preferredLanguages(const LanguageVariables& variables) {
  std::string_view locale;
  for (const char* const value : {variables.all, variables.messages, variables.lang}) {
    if (locale.empty() && value != nullptr) locale = value;
  }
  const bool isPlain = locale.empty() || locale == "C" || locale == "POSIX" || locale.starts_with("C.");

  std::vector<std::string> languages;
  const auto add = [&](std::string code) {
    if (!code.empty() && std::ranges::find(languages, code) == languages.end()) languages.push_back(std::move(code));
  };
  const auto addLocale = [&](std::string_view name) {
    name = name.substr(0, name.find_first_of(".@"));
    const std::string_view base = name.substr(0, name.find('_'));
    if (base == "zh" && (name == "zh_TW" || name == "zh_HK" || name == "zh_MO")) {
      add("zh-Hant");
    } else if (base == "zh") {
      add("zh-Hans");
    } else {
      add(replacingOccurrences(name, "_", "-"));
    }
    add(std::string(base));
  };
  if (!isPlain) {
    if (variables.language != nullptr) {
      for (const std::string_view name : split(variables.language, ':')) addLocale(name);
    }
    addLocale(locale);
  }
  add("en");
  return languages;
}

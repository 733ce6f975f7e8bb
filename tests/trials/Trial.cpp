// SPDX-License-Identifier: Apache-2.0

#include "trials/Trial.h"

#include <dirent.h>
#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <set>
#include <thread>

namespace {

const std::string digestOfNothing = "none";

std::uint64_t hashOf(std::string_view text) {
  std::uint64_t hash = 14695981039346656037U;  // FNV-1a
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
  return hash;
}

std::string bundleName(int number) { return "Filter " + std::to_string(number) + ".plugin"; }

void chownAll(const fs::path& path, uid_t user) {
  setOwner(path, user, user);
  for (const auto& entry : fs::recursive_directory_iterator(path)) setOwner(entry.path(), user, user);
}

}  // namespace

std::string digestOf(const fs::path& path, bool withOwners) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return digestOfNothing;
  std::string text = std::to_string(status.st_mode);
  if (withOwners) text += " " + std::to_string(status.st_uid) + ":" + std::to_string(status.st_gid);
  if (S_ISLNK(status.st_mode)) return text + fs::read_symlink(path).string();
  if (S_ISREG(status.st_mode)) return text + std::to_string(hashOf(readFile(path)));
  if (!S_ISDIR(status.st_mode)) return text;
  std::set<fs::path> entries;
  for (const auto& entry : fs::directory_iterator(path)) entries.insert(entry.path());
  for (const fs::path& entry : entries) text += "\n" + entry.filename().string() + " " + digestOf(entry, withOwners);
  return std::to_string(hashOf(text));
}

Trial::Trial() {
  ::chmod(folder_.path().c_str(), 0755);
  fs::copy(INSTALLER_BUNDLE, bundle_, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
  const fs::path payload = bundle_ / "Contents/Resources/files";
  fs::remove_all(payload);
  makePayload(payload / "HD/Applications/Corvane", "new");
  makePayload(old_, "old");
}

void Trial::SetUp() {
  if (::geteuid() != 0) GTEST_SKIP() << "needs root";
  reset();
  const Run installed = run(Who::root);
  ASSERT_TRUE(claimsSuccess(installed)) << installed.output;
  for (int i = 0; i < bundleCount; ++i) {
    digestOfNew_[i] = digestOf(volume_ / "Applications/Corvane" / bundleName(i), false);
    digestOfOld_[i] = digestOf(old_ / bundleName(i), false);
  }
  reset();
}

int Trial::rounds(int inShort) {
  const char* const rounds = std::getenv("INSTALLER_TRIALS");
  return rounds == nullptr ? inShort : std::atoi(rounds);
}

void Trial::makePayload(const fs::path& folder, const std::string& version) const {
  for (int i = 0; i < bundleCount; ++i) {
    const fs::path contents = folder / bundleName(i) / "Contents";
    writeFile(contents / "Info.plist", propertyListOf({{"CFBundleVersion", version}}));
    for (int file = 0; file < 20; ++file) {
      writeFile(contents / "Resources" / std::to_string(file), version + std::string(4000, 'r'));
    }
    writeFile(contents / "MacOS/Filter", version + std::string(200'000, 'p'));
    fs::create_symlink("MacOS/Filter", contents / "Current");
  }
}

void Trial::reset(const fs::path& volume) const {
  if (fs::exists(volume)) {
    for (const auto& entry : fs::directory_iterator(volume)) fs::remove_all(entry.path());
  }
  fs::create_directories(volume / "Applications");
  fs::create_directories(volume / "Library/Application Support");
  fs::create_directories(volume / "Users/root/Library");
  fs::copy(old_, volume / "Applications/Corvane", fs::copy_options::recursive | fs::copy_options::copy_symlinks);
  if (const passwd* const account = ::getpwnam(user_.c_str())) {
    fs::create_directories(volume / "Users" / user_ / "Library");
    chownAll(volume / "Users" / user_, account->pw_uid);
  }
}

Trial::Process Trial::start(Who who, const std::vector<std::string>& wrapper) const {
  return start(who, volume_, wrapper);
}

Trial::Process Trial::start(Who who, const fs::path& volume, const std::vector<std::string>& wrapper) const {
  std::vector<std::string> words = wrapper;
  words.insert(words.end(), {bundle_ / "Contents/MacOS/Installer", "-quiet", "-target", volume});
  return startProgram(who, std::move(words));
}

Trial::Process Trial::startProgram(Who who, std::vector<std::string> words) const {
  static int number = 0;
  Process process{.output = folder_.path() / ("output" + std::to_string(++number))};
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const passwd* const account = who == Who::user ? ::getpwnam(user_.c_str()) : nullptr;
  process.id = ::fork();
  if (process.id != 0) return process;
  ::setsid();
  const int output = ::open(process.output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  ::dup2(output, STDOUT_FILENO);
  ::dup2(::open("/dev/null", O_RDWR), STDERR_FILENO);
  ::dup2(STDERR_FILENO, STDIN_FILENO);
  ::clearenv();
  if (account != nullptr) {
    if (::initgroups(account->pw_name, account->pw_gid) != 0 || ::setgid(account->pw_gid) != 0 ||
        ::setuid(account->pw_uid) != 0) {
      std::_Exit(126);
    }
  }
  ::execvp(arguments[0], arguments.data());
  std::_Exit(127);
}

Trial::Run Trial::finish(const Process& process) const {
  int status = 0;
  ::waitpid(process.id, &status, 0);
  Run run{WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), readFile(process.output)};
  fs::remove(process.output);
  return run;
}

void Trial::waitForHelper(const fs::path& volume) {
  const auto isAtWork = [&] {
    for (const auto& entry : fs::directory_iterator("/proc")) {
      if (entry.path().filename().string().find_first_not_of("0123456789") != std::string::npos) continue;
      std::string command;  // stays empty when the process ends meanwhile
      std::ifstream file(entry.path() / "cmdline");
      std::getline(file, command);
      if (command.find("Helpers/rights") != std::string::npos && command.find(volume.string()) != std::string::npos) {
        return true;
      }
    }
    return false;
  };
  while (isAtWork()) sleep(2);
}

Trial::State Trial::look(const fs::path& volume) const {
  State state;
  for (int i = 0; i < bundleCount; ++i) {
    const std::string digest = digestOf(volume / "Applications/Corvane" / bundleName(i), false);
    if (digest == digestOfNew_[i]) {
      ++state.fresh;
    } else if (digest == digestOfOld_[i]) {
      ++state.old;
    } else {
      ++state.broken;
      state.gone += digest == digestOfNothing ? 1 : 0;
    }
  }
  return state;
}

int Trial::leftovers(const fs::path& volume) {
  int count = 0;
  for (const auto& entry : fs::recursive_directory_iterator(volume)) {
    const std::string name = entry.path().filename();
    if (name.starts_with(".installing") || name.ends_with(".new")) ++count;
  }
  return count;
}

bool Trial::claimsSuccess(const Run& run) {
  return run.status == 0 && run.output.find(" was installed on ") != std::string::npos;
}

double Trial::duration(Who who) const {
  std::vector<double> times;
  for (int i = 0; i < 5; ++i) {
    reset();
    const auto begin = std::chrono::steady_clock::now();
    static_cast<void>(run(who));
    times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count());
  }
  std::ranges::sort(times);
  return times[times.size() / 2];
}

void Trial::sleep(double milliseconds) {
  std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(milliseconds));
}

void Trial::say(const std::string& figures) { std::cout << "[   TRIAL  ] " << figures << '\n'; }

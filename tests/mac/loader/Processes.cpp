// SPDX-License-Identifier: Apache-2.0

// Child processes, and the queue that tells of their end.
#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <spawn.h>
#include <sys/epoll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "Names.h"

extern char** environ;

namespace {

// The objects of posix_spawn() are pointers on a Mac.

int initActions(posix_spawn_file_actions_t** actions) {
  *actions = new posix_spawn_file_actions_t();
  return ::posix_spawn_file_actions_init(*actions);
}
int destroyActions(posix_spawn_file_actions_t** actions) {
  ::posix_spawn_file_actions_destroy(*actions);
  delete *actions;
  return 0;
}
int addDuplicate(posix_spawn_file_actions_t** actions, int from, int to) {
  return ::posix_spawn_file_actions_adddup2(*actions, from, to);
}
int addFolder(posix_spawn_file_actions_t** actions, int folder) {
  return ::posix_spawn_file_actions_addfchdir_np(*actions, folder);
}
int addOpen(posix_spawn_file_actions_t** actions, int file, const char* path, int flags, std::uint16_t mode) {
  return ::posix_spawn_file_actions_addopen(*actions, file, path, openFlagsFromMac(flags), mode);
}
int initAttributes(posix_spawnattr_t** attributes) {
  *attributes = new posix_spawnattr_t();
  return ::posix_spawnattr_init(*attributes);
}
int destroyAttributes(posix_spawnattr_t** attributes) {
  ::posix_spawnattr_destroy(*attributes);
  delete *attributes;
  return 0;
}
/// Its two flags of interest have the same numbers.
int setFlags(posix_spawnattr_t** attributes, short flags) { return ::posix_spawnattr_setflags(*attributes, flags); }

sigset_t signalsFromMac(std::uint32_t signals) {
  sigset_t here;
  ::sigemptyset(&here);
  if (signals != 0) ::sigfillset(&here);  // some of them are never asked for
  return here;
}
int setMask(posix_spawnattr_t** attributes, const std::uint32_t* signals) {
  const sigset_t here = signalsFromMac(*signals);
  return ::posix_spawnattr_setsigmask(*attributes, &here);
}
int setDefaults(posix_spawnattr_t** attributes, const std::uint32_t* signals) {
  const sigset_t here = signalsFromMac(*signals);
  return ::posix_spawnattr_setsigdefault(*attributes, &here);
}

constexpr std::string_view registrationTool =
    "/System/Library/Frameworks/CoreServices.framework/Versions/A/Frameworks/LaunchServices.framework/Versions/A/"
    "Support/lsregister";

int startProcess(pid_t* process, const char* path, posix_spawn_file_actions_t** actions, posix_spawnattr_t** attributes,
                 char* const* arguments, char* const* environment) {
  std::vector<std::string> texts = commandHere(path, arguments + 1);
  std::vector<char*> given;
  for (std::string& text : texts) given.push_back(text.data());
  given.push_back(nullptr);
  return ::posix_spawn(process, texts.front().c_str(), actions != nullptr ? *actions : nullptr,
                       attributes != nullptr ? *attributes : nullptr, given.data(),
                       environment != nullptr ? environment : environ);
}

struct MacEvent {
  std::uint64_t identity;
  std::int16_t filter;
  std::uint16_t flags;
  std::uint32_t moreFlags;
  std::int64_t data;
  void* userData;
};

int makeQueue() { return ::epoll_create1(0); }

/// Adds processes to a queue; the queue is never read, only waited for.
int changeQueue(int queue, const MacEvent* changes, int count, MacEvent* /*events*/, int wanted,
                const timespec* /*limit*/) {
  constexpr std::int16_t processFilter = -5;
  for (const MacEvent* change = changes; change < changes + count; ++change) {
    if (change->filter != processFilter || wanted != 0) {
      errno = ENOTSUP;
      return -1;
    }
    siginfo_t ended{};
    const auto process = static_cast<pid_t>(change->identity);
    // A Mac does not know a process any more that has ended and waits to be reaped.
    if (::waitid(P_PID, static_cast<id_t>(process), &ended, WEXITED | WNOHANG | WNOWAIT) == 0 && ended.si_pid != 0) {
      errno = ESRCH;
      return -1;
    }
    const int handle = static_cast<int>(::syscall(SYS_pidfd_open, process, 0));
    epoll_event event{.events = EPOLLIN, .data = {}};
    if (handle < 0 || ::epoll_ctl(queue, EPOLL_CTL_ADD, handle, &event) != 0) return -1;
  }
  return 0;
}

struct MacAction {
  void (*handler)(int);
  std::uint32_t blocked;
  std::int32_t flags;
};

/// The numbers of the signals that the installer knows are the same.
int setAction(int signal, const MacAction* action, MacAction* before) {
  constexpr std::int32_t restart = 2;
  struct sigaction here {};
  struct sigaction old {};
  if (action != nullptr) {
    here.sa_handler = action->handler;
    here.sa_flags = action->flags == restart ? SA_RESTART : 0;
  }
  if (::sigaction(signal, action != nullptr ? &here : nullptr, &old) != 0) return -1;
  if (before != nullptr) *before = {old.sa_handler, 0, (old.sa_flags & SA_RESTART) != 0 ? restart : 0};
  return 0;
}

struct MacAccount {
  char* name;
  char* password;
  std::uint32_t user;
  std::uint32_t group;
  std::int64_t change;
  char* access;
  char* fullName;
  char* home;
  char* shell;
  std::int64_t expires;
};

const MacAccount* toMac(const passwd* from) {
  static MacAccount account;
  if (from == nullptr) return nullptr;
  account = {.name = from->pw_name,
             .password = from->pw_passwd,
             .user = from->pw_uid,
             .group = from->pw_gid,
             .change = 0,
             .access = nullptr,
             .fullName = from->pw_gecos,
             .home = from->pw_dir,
             .shell = from->pw_shell,
             .expires = 0};
  return &account;
}

const MacAccount* accountOfUser(std::uint32_t user) { return toMac(::getpwuid(user)); }
const MacAccount* accountOfName(const char* name) { return toMac(::getpwnam(name)); }

}  // namespace

std::vector<std::string> commandHere(std::string_view tool, char* const* arguments) {
  std::vector<std::string> command = {std::string(tool)};
  for (; *arguments != nullptr; ++arguments) command.emplace_back(*arguments);
  // There is no tool for extended attributes and none for the database of applications.
  if (tool == "/usr/bin/xattr" || tool == registrationTool) return {"/bin/true"};
  if (tool == "/usr/sbin/chown") command.front() = "/bin/chown";
  for (std::string& text : command) {
    // A link to a folder is not followed by either; MAC_MV=old in the environment: mv does not know -h.
    if (tool == "/bin/mv" && text.starts_with("-h") && std::getenv("MAC_MV") != nullptr) return {"/bin/false"};
    if (tool == "/bin/mv" && (text == "-hn" || text == "-n")) text = "-nT";
    if (tool == "/bin/mv" && (text == "-hf" || text == "-f")) text = "-fT";
    const bool isForAdmin = tool == "/usr/sbin/chown" && text.ends_with(":admin") && ::getgrnam("admin") == nullptr;
    if (isForAdmin) text.replace(text.size() - 5, 5, "80");  // its number on every Mac
  }
  return command;
}

std::vector<Name> namesOfProcesses() {
  return {function("_posix_spawn", &startProcess),
          function("_posix_spawn_file_actions_init", &initActions),
          function("_posix_spawn_file_actions_destroy", &destroyActions),
          function("_posix_spawn_file_actions_adddup2", &addDuplicate),
          function("_posix_spawn_file_actions_addfchdir_np", &addFolder),
          function("_posix_spawn_file_actions_addopen", &addOpen),
          function("_posix_spawnattr_init", &initAttributes),
          function("_posix_spawnattr_destroy", &destroyAttributes),
          function("_posix_spawnattr_setflags", &setFlags),
          function("_posix_spawnattr_setsigmask", &setMask),
          function("_posix_spawnattr_setsigdefault", &setDefaults),
          function("_kqueue", &makeQueue),
          function("_kevent", &changeQueue),
          function("_sigaction", &setAction),
          function("_getpwuid", &accountOfUser),
          function("_getpwnam", &accountOfName)};
}

// SPDX-License-Identifier: Apache-2.0

#include "platform/rights/HelperStart.h"

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <pwd.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <utility>

#include "foundation/Path.h"
#include "platform/processes/Executables.h"
#include "platform/processes/Pipe.h"
#include "platform/rights/AskingReport.h"

namespace {

bool isSet(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

/// Whether this process is in the foreground of its terminal: reading stops a background process.
bool ownsTerminal() {
  const FileDescriptor terminal(::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC));
  return terminal && ::tcgetpgrp(terminal.get()) == ::getpgrp();
}

/// Whether the group is the user's private group, which has no other members.
bool isGroupOfUserAlone(gid_t number) {
  const passwd* const user = ::getpwuid(::getuid());
  if (user == nullptr || user->pw_gid != number) return false;
  const std::string userName = user->pw_name;
  const group* const entry = ::getgrgid(number);
  if (entry == nullptr || userName != entry->gr_name) return false;
  for (char** member = entry->gr_mem; *member != nullptr; ++member) {
    if (userName != *member) return false;
  }
  return true;
}

bool isOutOfReach(const struct stat& status) {
  if (status.st_uid != 0 && status.st_uid != ::getuid()) return false;
  // Sticky folders such as /tmp: users cannot remove each other's items.
  if (S_ISDIR(status.st_mode) && (status.st_mode & S_ISVTX) != 0) return true;
  if ((status.st_mode & S_IWOTH) != 0) return false;
  // With an ACL the group bits are the ACL mask, whatever the group is.
  return (status.st_mode & S_IWGRP) == 0 || isGroupOfUserAlone(status.st_gid);
}

struct SocketPair {
  FileDescriptor ours;
  FileDescriptor helpers;
};

std::optional<SocketPair> makeSocketPair() {
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) return std::nullopt;
  return SocketPair{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

/// Starts the program that asks. It detaches at once, so waiting for any child does not find it.
bool startAsking(const std::string& program, const std::vector<std::string>& command, int helpersSocket, int report) {
  std::vector<char*> arguments = {const_cast<char*>(program.c_str())};
  for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, helpersSocket, STDIN_FILENO);
  ::posix_spawn_file_actions_adddup2(&actions, report, STDOUT_FILENO);
  pid_t process = 0;
  // With the user's environment: the agents and programs that ask need it.
  const int error = ::posix_spawn(&process, program.c_str(), &actions, nullptr, arguments.data(), ::environ);
  ::posix_spawn_file_actions_destroy(&actions);
  if (error != 0) return false;
  while (::waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
  }
  return true;
}

/// Status when the helper did not become ready.
LaunchStatus outcome(int report, bool isPkexec) {
  AskingReport asked;
  if (::read(report, &asked, sizeof asked) != sizeof asked) return errAuthorizationDenied;
  constexpr int dismissed = 126;  // pkexec, when the user closes its dialogue
  if (asked.isCancelled || (isPkexec && asked.status == dismissed)) return errAuthorizationCanceled;
  return errAuthorizationDenied;
}

/// Waits for the helper's first message. Returns false when there will be none.
bool isFirstMessageThere(int socket, int report, const std::function<void()>& meanwhile) {
  constexpr int pause = 30;
  std::array<pollfd, 2> polled = {pollfd{socket, POLLIN, 0}, pollfd{report, POLLIN, 0}};
  for (;;) {
    const int ready = ::poll(polled.data(), polled.size(), meanwhile ? pause : -1);
    if (ready > 0) return (polled[0].revents & POLLIN) != 0;
    if (ready < 0 && errno != EINTR) return false;
    if (meanwhile) meanwhile();
  }
}

}  // namespace

AskingMeans askingMeans() {
  return {.sudo = findExecutable("sudo").value_or(""),
          .pkexec = findExecutable("pkexec").value_or(""),
          .hasAskpassProgram = isSet("SUDO_ASKPASS"),
          .hasTerminal = ownsTerminal(),
          .hasDesktop = isSet("DISPLAY") || isSet("WAYLAND_DISPLAY")};
}

std::vector<std::string> askingCommand(const AskingMeans& means, Surface surface) {
  const bool hasSudo = !means.sudo.empty();
  const bool hasDialogue = means.hasDesktop && !means.pkexec.empty();
  const bool hasPrompt = means.hasTerminal && hasSudo;
  if (means.hasAskpassProgram && hasSudo) return {means.sudo, "-A", "--"};
  if (hasDialogue && (surface == Surface::window || !hasPrompt)) return {means.pkexec, "--disable-internal-agent"};
  if (hasPrompt) return {means.sudo, "--"};
  if (hasSudo) return {means.sudo, "-n", "--"};
  return {};
}

bool isOutOfReachOfOthers(const std::string& program) {
  for (std::string path = program;; path = deletingLastPathComponent(path)) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0 || S_ISLNK(status.st_mode) || !isOutOfReach(status)) return false;
    if (path == "/") return true;
  }
}

std::variant<HelperConnection, LaunchStatus> startHelper(const HelperSetup& setup, const AskingMeans& means) {
  std::vector<std::string> command = askingCommand(means, setup.surface);
  const std::string helper = joinPath(setup.helpersFolder, "rights");
  const std::string asking = joinPath(setup.helpersFolder, "ask-for-rights");
  if (command.empty() || !isOutOfReachOfOthers(helper) || !isOutOfReachOfOthers(asking)) return errAuthorizationDenied;
  const bool isPkexec = command.front() == means.pkexec;
  command.push_back(helper);
  command.push_back(setup.volumeRoot);

  auto sockets = makeSocketPair();
  auto report = makePipe();
  if (!sockets || !report) return errAuthorizationDenied;
  if (!startAsking(asking, command, sockets->helpers.get(), report->writing.get())) return errAuthorizationDenied;
  sockets->helpers.close();
  report->writing.close();

  HelperConnection connection(MessageSocket(std::move(sockets->ours)), setup.wasInterrupted);
  const bool isAnswered = isFirstMessageThere(connection.descriptor(), report->reading.get(), setup.whileAsking) &&
                          connection.receiveReady();
  if (isAnswered) return connection;
  return outcome(report->reading.get(), isPkexec);
}

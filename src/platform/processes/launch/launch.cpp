// SPDX-License-Identifier: Apache-2.0

// Starts a program in a session of its own, as nobody's child:
//
//   launch - [NAME=VALUE…] -- PROGRAM [ARGUMENT…]
//   launch USER GROUP GROUPS [NAME=VALUE…] -- PROGRAM [ARGUMENT…]
//
// The second form gives up all rights for those of the user, with these numbers; GROUPS are the further groups, joined
// by commas. The program gets no environment but the variables given. Once it runs, its process number is written on a
// line, and is kept from being given to another process until nobody reads our output any more. Ends with 1, and
// writes nothing, when the program cannot be started.

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

bool become(const char* user, const char* group, const std::string& groups) {
  std::vector<gid_t> further;
  for (std::size_t at = 0; at < groups.size();) {
    const std::size_t end = std::min(groups.find(',', at), groups.size());
    further.push_back(static_cast<gid_t>(std::strtoul(groups.substr(at, end - at).c_str(), nullptr, 10)));
    at = end + 1;
  }
  const auto userNumber = static_cast<uid_t>(std::strtoul(user, nullptr, 10));
  const auto groupNumber = static_cast<gid_t>(std::strtoul(group, nullptr, 10));
  return userNumber != 0 && ::setgroups(further.size(), further.data()) == 0 &&
         ::setresgid(groupNumber, groupNumber, groupNumber) == 0 &&
         ::setresuid(userNumber, userNumber, userNumber) == 0;
}

/// In the new process; comes back only when the program cannot be started.
void execute(char** program, char** variables) {
  const int nowhere = ::open("/dev/null", O_RDWR);
  if (nowhere < 0 || ::setsid() < 0 || ::chdir("/") != 0) return;
  for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::dup2(nowhere, standard);
  if (nowhere > STDERR_FILENO) ::close(nowhere);
  ::execve(program[0], program, variables);
}

}  // namespace

int main(int count, char** arguments) {
  char** const end = arguments + count;
  char** at = arguments + 1;
  if (at == end) return 64;
  if (std::string_view(*at) == "-") {
    ++at;
  } else if (end - at < 3 || !become(at[0], at[1], at[2])) {
    return 1;
  } else {
    at += 3;
  }
  char** const separator = std::find_if(at, end, [](const char* text) { return std::string_view(text) == "--"; });
  if (end - separator < 2) return 64;
  *separator = nullptr;

  int failure[2];
  if (::pipe2(failure, O_CLOEXEC) != 0) return 1;
  const pid_t process = ::fork();
  if (process < 0) return 1;
  if (process == 0) {
    execute(separator + 1, at);
    const ssize_t told = ::write(failure[1], "", 1);
    ::_exit(told == 1 ? 127 : 126);
  }
  ::close(failure[1]);
  char byte = 0;
  ssize_t length = 0;
  do {
    length = ::read(failure[0], &byte, 1);
  } while (length < 0 && errno == EINTR);
  if (length != 0) return 1;

  const std::string line = std::to_string(process) + "\n";
  if (::write(STDOUT_FILENO, line.data(), line.size()) != static_cast<ssize_t>(line.size())) return 0;
  // Not waited for, a process that has ended keeps its number.
  pollfd output{STDOUT_FILENO, 0, 0};
  while (::poll(&output, 1, -1) < 0 && errno == EINTR) {
  }
  return 0;
}

// SPDX-License-Identifier: Apache-2.0

#include "platform/processes/UserProcess.h"

#include <fcntl.h>
#include <grp.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "platform/files/SystemCalls.h"

namespace {

/// Only calls that are safe between fork and exec. The raw ones change this thread, the only one there.
void becomeAndRun(const UserAccount& user, int nothing, char* const* arguments, char* const* environment) {
  if (::getuid() == 0) {
    ::syscall(SYS_setresuid, -1, 0, -1);  // the rights to change sides, where another user's were taken for a time
    const bool isUser = ::syscall(SYS_setgroups, 0, nullptr) == 0 &&
                        ::syscall(SYS_setresgid, user.group, user.group, user.group) == 0 &&
                        ::syscall(SYS_setresuid, user.id, user.id, user.id) == 0;
    if (!isUser) return;
  }
  for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::dup2(nothing, standard) < 0) return;
  }
  ::execve(arguments[0], arguments, environment);
}

}  // namespace

Status startAsUser(const UserAccount& user, const std::string& program, const std::vector<std::string>& arguments) {
  std::vector<char*> texts = {const_cast<char*>(program.c_str())};
  for (const std::string& argument : arguments) texts.push_back(const_cast<char*>(argument.c_str()));
  texts.push_back(nullptr);
  std::string path = "PATH=/usr/bin:/bin:/usr/sbin:/sbin";
  std::string locale = "LC_ALL=C";
  const std::array<char*, 3> environment = {path.data(), locale.data(), nullptr};
  const FileDescriptor nothing(::open("/dev/null", O_RDWR | O_CLOEXEC));
  if (!nothing) return systemError(errno, "/dev/null");
  const pid_t process = ::fork();
  if (process == 0) {
    becomeAndRun(user, nothing.get(), texts.data(), environment.data());
    ::_exit(127);
  }
  return systemStatus(process < 0 ? errno : 0, program);
}

// SPDX-License-Identifier: Apache-2.0

#include "platform/processes/ChildProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "platform/files/SystemCalls.h"

Result<pid_t> spawn(const ChildProcess& child) {
  std::vector<char*> arguments = {const_cast<char*>(child.executable.c_str())};
  for (const std::string& argument : child.arguments) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  std::string path = "PATH=/usr/bin:/bin:/usr/sbin:/sbin";
  std::string locale = "LC_ALL=C";
  char* const environment[] = {path.data(), locale.data(), nullptr};

  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  if (child.standardOutput >= 0) ::posix_spawn_file_actions_adddup2(&actions, child.standardOutput, STDOUT_FILENO);
  if (child.standardError >= 0) ::posix_spawn_file_actions_adddup2(&actions, child.standardError, STDERR_FILENO);
  if (child.folder >= 0) ::posix_spawn_file_actions_addfchdir_np(&actions, child.folder);

  posix_spawnattr_t attributes;
  ::posix_spawnattr_init(&attributes);
  sigset_t signals;  // filled by functions here and by macros elsewhere
  sigemptyset(&signals);
  ::posix_spawnattr_setsigmask(&attributes, &signals);
  sigfillset(&signals);
  ::posix_spawnattr_setsigdefault(&attributes, &signals);
  ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

  pid_t process = 0;
  const int error =
      ::posix_spawn(&process, child.executable.c_str(), &actions, &attributes, arguments.data(), environment);
  ::posix_spawnattr_destroy(&attributes);
  ::posix_spawn_file_actions_destroy(&actions);
  if (error != 0) return systemError(error, child.executable);
  return process;
}

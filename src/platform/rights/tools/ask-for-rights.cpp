// SPDX-License-Identifier: Apache-2.0

// Starts the installer's helper through a command that asks for a password, detached from the installer, and reports
// how that command ended. It runs with the user's own rights.
//
//   ask-for-rights COMMAND...
//
// Standard input becomes the command's; the report, an AskingReport, goes to standard output. The same program serves
// as sudo's askpass program: it starts the user's own, and tells when that gave no password.

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "platform/rights/AskingReport.h"

namespace {

constexpr const char* askpassVariable = "SUDO_ASKPASS";
constexpr const char* usersAskpassVariable = "INSTALLER_ASKPASS";
constexpr const char* askerVariable = "INSTALLER_ASKER";
constexpr int cancelledSignal = SIGUSR1;

int statusOf(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : EXIT_FAILURE;
}

/// What sudo reads is the other program's own output: the password does not come by here.
int beAskpass(const char* usersProgram, char** argv) {
  const pid_t child = ::fork();
  if (child == 0) {
    ::execl(usersProgram, usersProgram, argv[1], nullptr);
    std::_Exit(EXIT_FAILURE);
  }
  const int status = child > 0 ? statusOf(child) : EXIT_FAILURE;
  const char* const asker = std::getenv(askerVariable);
  pid_t process = 0;
  if (asker != nullptr) std::from_chars(asker, asker + std::strlen(asker), process);
  if (status != 0 && process > 1) ::kill(process, cancelledSignal);
  return status;
}

/// Lets sudo ask through this program, when the user has one of their own for it.
void stepBetween() {
  const char* const usersProgram = std::getenv(askpassVariable);
  std::error_code failed;
  const std::string self = std::filesystem::read_symlink("/proc/self/exe", failed);
  if (usersProgram == nullptr || self.empty()) return;
  ::setenv(usersAskpassVariable, usersProgram, 1);
  ::setenv(askerVariable, std::to_string(::getpid()).c_str(), 1);
  ::setenv(askpassVariable, self.c_str(), 1);
}

void releaseSignals() {
  sigset_t none;
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

int redirect(int descriptor) {
  const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
  return ::dup2(nothing, descriptor);
}

int runCommand(char** command) {
  stepBetween();
  sigset_t signals;
  ::sigemptyset(&signals);
  ::sigaddset(&signals, cancelledSignal);
  ::sigprocmask(SIG_BLOCK, &signals, nullptr);
  const pid_t child = ::fork();
  if (child == 0) {
    releaseSignals();
    redirect(STDOUT_FILENO);
    ::execv(command[0], command);
    std::_Exit(EXIT_FAILURE);
  }
  redirect(STDIN_FILENO);  // or the helper's end would go unnoticed as long as this runs
  AskingReport report{child > 0 ? statusOf(child) : EXIT_FAILURE, 0};
  sigset_t pending;
  ::sigpending(&pending);
  report.isCancelled = ::sigismember(&pending, cancelledSignal);
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));  // nobody reads this any more when the helper did its work
  static_cast<void>(::write(STDOUT_FILENO, &report, sizeof report) < 0);
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return EXIT_FAILURE;
  if (const char* const usersProgram = std::getenv(usersAskpassVariable)) return beAskpass(usersProgram, argv);
  // Whoever started this waits for it: what goes on is nobody's child.
  const pid_t child = ::fork();
  if (child != 0) return child > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
  return runCommand(argv + 1);
}

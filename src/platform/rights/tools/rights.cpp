// SPDX-License-Identifier: Apache-2.0

// The installer's helper with administrator rights. sudo or pkexec starts it for the installer, and it serves that one
// until the connection, its standard input, is closed.
//
//   rights VOLUME
//
// VOLUME is the root folder of the target volume, without links. What it lets whom do is in docs/security.md.

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>

#include "platform/files/SystemCalls.h"
#include "platform/files/VolumeCheck.h"
#include "platform/processes/DesktopEntries.h"
#include "platform/rights/HelperElevation.h"
#include "platform/rights/HelperService.h"

namespace {

int complain(const std::string& what) {
  std::fprintf(stderr, "rights: %s\n", what.c_str());
  return EXIT_FAILURE;
}

/// Leaves the process with three standard descriptors, the first of them empty, and takes what was the first.
FileDescriptor takeConnection() {
  FileDescriptor connection(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
  const FileDescriptor nothing(::open("/dev/null", O_RDWR | O_CLOEXEC));
  if (!nothing || ::dup2(nothing.get(), STDIN_FILENO) < 0) return {};
  for (const int standard : {STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(standard, F_GETFD) < 0 && ::dup2(nothing.get(), standard) < 0) return {};
  }
  return connection;
}

/// The volume's root, as far as the client can get there. It must be the client's or root's: a folder of somebody
/// else's is theirs, whatever lies in it.
Result<FileDescriptor> openVolume(const std::string& root, uid_t client) {
  open_how how{};
  how.flags = O_PATH | O_DIRECTORY | O_CLOEXEC;
  how.resolve = RESOLVE_NO_SYMLINKS;
  FileDescriptor folder(static_cast<int>(::syscall(SYS_openat2, AT_FDCWD, root.c_str(), &how, sizeof how)));
  struct stat status {};
  if (!folder || ::fstat(folder.get(), &status) != 0) return systemError(errno, root);
  const bool mayBe = root.starts_with('/') && (status.st_uid == 0 || status.st_uid == client);
  if (!mayBe) return Error::posix(std::errc::operation_not_permitted, root);
  if (Status volume = checkMacVolume(folder.get(), client, root); !volume) return volume.error();
  return folder;
}

/// The bundle whose helper this is.
std::string ownBundle() {
  std::error_code failed;
  const auto program = std::filesystem::read_symlink("/proc/self/exe", failed);
  return program.parent_path().parent_path().parent_path();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2 || ::geteuid() != 0) return complain("is started by the installer, with administrator rights");
  ::close_range(STDERR_FILENO + 1, ~0U, 0);
  ::umask(022);
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
  static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
  static_cast<void>(std::signal(SIGCHLD, SIG_DFL));
  if (::chdir("/") != 0) return complain("no root folder");

  const std::string bundle = ownBundle();
  MessageSocket connection(takeConnection());
  const auto client = clientOf(connection.descriptor());
  ::clearenv();
  if (!client) return complain(client.error().description());
  if (!confineProcess()) return complain("the system does not let rights be given up");
  becomeClient(*client);

  auto volumeRoot = openVolume(argv[1], client->account.id);
  if (!volumeRoot) return complain(volumeRoot.error().description());
  const Volume volume(std::move(*volumeRoot), argv[1], bundle);
  const std::string home = homeOnVolume(volume.root(), client->account);
  const gid_t group = groupNumber("admin").value_or(client->account.group);
  HelperElevation elevation(*client, {client->account.id, group}, Places(volume, home, client->account.id));
  const Operations operations(volume, elevation, client->account, applicationsFolderIn(home));
  const bool isAtEnd = HelperService(std::move(connection), volume, elevation, operations).serve();
  // Nothing in the way of ending at once.
  std::_Exit(isAtEnd ? EXIT_SUCCESS : EXIT_FAILURE);
}

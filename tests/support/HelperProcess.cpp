// SPDX-License-Identifier: Apache-2.0

#include "support/HelperProcess.h"

#include <fcntl.h>
#include <grp.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>
#include <utility>

namespace {

/// A connection that the system says was made by the user.
std::array<int, 2> connectionOf(uid_t user) {
  std::array<int, 2> ends{};
  const gid_t group = user;
  const bool isMade = ::setgroups(1, &group) == 0 && ::setegid(group) == 0 && ::seteuid(user) == 0 &&
                      ::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) == 0;
  if (::seteuid(0) != 0 || ::setegid(0) != 0 || ::setgroups(0, nullptr) != 0 || !isMade) {
    throw std::runtime_error("no connection");
  }
  return ends;
}

}  // namespace

std::string ownerOf(const fs::path& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return "(none)";
  return std::to_string(status.st_uid) + ":" + std::to_string(status.st_gid);
}

HelperProcess::HelperProcess(const fs::path& program, const fs::path& volume, uid_t user, std::string variable)
    : socket(FileDescriptor()) {
  const auto ends = connectionOf(user);
  socket = MessageSocket(FileDescriptor(ends[0]));
  const FileDescriptor helpers(ends[1]);
  char* const environment[] = {variable.empty() ? nullptr : variable.data(), nullptr};
  process = ::fork();
  if (process == 0) {
    ::dup2(helpers.get(), STDIN_FILENO);
    ::dup2(::open("/dev/null", O_WRONLY), STDERR_FILENO);
    ::execle(program.c_str(), program.c_str(), volume.c_str(), nullptr, environment);
    std::_Exit(127);
  }
}

HelperProcess::~HelperProcess() {
  socket.close();
  if (process > 0) end();
}

int HelperProcess::end() {
  int status = 0;
  ::waitpid(std::exchange(process, 0), &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

void HelperTest::SetUp() {
  if (::geteuid() != 0) GTEST_SKIP() << "needs root, to start the helper for somebody else";
  // Where the user gets to, as in an installation.
  for (const fs::path& folder : {on("").parent_path(), on(""), machine_.inBundle("").parent_path()}) {
    ::chmod(folder.c_str(), 0755);
  }
  program_ = machine_.inBundle("Helpers/rights");
  fs::copy_file(fs::path(HELPERS_FOLDER) / "rights", program_);
  makeOwnFolder("/Users/nobody");
  writeFile(on("/private/etc/secret"), "secret");
  ::chmod(on("/private/etc/secret").c_str(), 0600);
  handedOver_ = std::to_string(nobody) + ":" + std::to_string(*groupNumber("admin"));
  helper_.emplace(program_, on(""));
  connection_ =
      std::make_shared<HelperConnection>(std::move(helper_->socket), [this](int signal) { signal_ = signal; });
  ASSERT_TRUE(connection_->receiveReady());
}

std::string HelperTest::run(const std::string& tool, const std::vector<std::string>& arguments) {
  const Packet reply = connection_->ask({tool, arguments});
  if (reply.name != HelperSays::done) return "refused";
  std::size_t position = 1;
  const Status done = takeResult(reply, position);
  return done ? "" : done.error().reason();
}

void HelperTest::makeOwnFolder(const std::string& path) {
  fs::create_directories(on(path));
  setOwner(on(path), nobody, nobody);
}

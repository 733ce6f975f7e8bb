// What one launch of a tool costs through the helper, beside the same launch by root itself:
//
//   rights-benchmark [LAUNCHES]
//
// Each launch is made, waited for and its pipe closed, as the install does. The two take turns in blocks of 100, so
// that both see the same machine; what is printed are medians of one launch, in Markdown. Needs root, to start the
// helper without a password for the account "nobody".

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iomanip>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/rights/HelperConnection.h"
#include "platform/rights/LinuxAuthorization.h"

namespace {

namespace fs = std::filesystem;

constexpr uid_t nobody = 65534;

void require(bool succeeded, const char* what) {
  if (!succeeded) throw std::runtime_error(what);
}

/// Starts the helper for a connection that nobody made.
HelperConnection startHelper(const fs::path& volume) {
  std::array<int, 2> ends{};
  require(::setegid(nobody) == 0 && ::seteuid(nobody) == 0, "not root");
  require(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) == 0, "no connection");
  require(::seteuid(0) == 0 && ::setegid(0) == 0, "not root again");
  if (::fork() == 0) {
    if (::fork() != 0) std::_Exit(EXIT_SUCCESS);  // so that no wait for a tool finds the helper
    ::dup2(ends[1], STDIN_FILENO);
    ::execl(INSTALLER_BUNDLE "/Contents/Helpers/rights", "rights", volume.c_str(), nullptr);
    std::_Exit(EXIT_FAILURE);
  }
  ::wait(nullptr);
  ::close(ends[1]);
  HelperConnection connection{MessageSocket(FileDescriptor(ends[0]))};
  require(connection.receiveReady(), "no helper");
  return connection;
}

using Launch = std::function<void(const Request& request)>;

/// Microseconds of each launch.
void measure(const Launch& launch, const Request& request, int count, std::vector<double>& times) {
  for (int i = 0; i < count; ++i) {
    const auto start = std::chrono::steady_clock::now();
    launch(request);
    times.push_back(std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count());
  }
}

double median(std::vector<double>& times) {
  const auto middle = times.begin() + std::ssize(times) / 2;
  std::nth_element(times.begin(), middle, times.end());
  return *middle;
}

void compare(const char* title, const Launch& direct, const Launch& helper, const Request& request, int launches) {
  constexpr int block = 100;
  std::vector<double> directTimes;
  std::vector<double> helperTimes;
  for (int done = 0; done < launches; done += block) {
    measure(direct, request, block, directTimes);
    measure(helper, request, block, helperTimes);
  }
  const double one = median(directTimes);
  const double other = median(helperTimes);
  std::cout << "| " << title << " | " << std::fixed << std::setprecision(0) << one << " | " << other << " | "
            << std::setprecision(2) << other / one << " |\n";
}

}  // namespace

int main(int argc, char** argv) {
  const int launches = argc > 1 ? std::atoi(argv[1]) : 10'000;
  if (::geteuid() != 0 || launches < 1) {
    std::cerr << "usage, as root: rights-benchmark [LAUNCHES]\n";
    return 64;
  }
  const fs::path root = fs::temp_directory_path() / "rights-benchmark";
  fs::remove_all(root);
  fs::create_directories(root / "Applications");
  ::chmod(root.c_str(), 0755);
  const fs::path file = root / "Applications/file";
  std::ofstream(file).flush();
  require(::chown(file.c_str(), nobody, nobody) == 0, "no file");

  const Volume volume(root, INSTALLER_BUNDLE);
  const PosixUser user({nobody, nobody, "nobody", "/"}, {"en"});
  const SystemTools tools(volume, user, INSTALLER_BUNDLE "/Contents/Helpers", "/registered");
  LinuxAuthorizations authorizations(tools, {});
  const auto authorization = authorizations.createAuthorization();
  auto connection = startHelper(root);
  const Launch direct = [&](const Request& request) {
    std::unique_ptr<CommunicationsPipe> pipe;
    const auto status = authorization->executeWithPrivileges(request.tool, request.arguments, pipe);
    require(status == launchSucceeded, "a launch failed");
    authorization->waitForAnyChild();
  };
  const Launch helper = [&](const Request& request) {
    std::unique_ptr<CommunicationsPipe> pipe;
    require(connection.launch(request, pipe) == launchSucceeded, "a launch failed");
    connection.waitForTool();
  };
  std::cout << "| " << launches
            << " launches of | direct, µs | through the helper, µs | ratio |\n|---|---:|---:|---:|\n";
  compare("touch", direct, helper, {"/usr/bin/touch", {"/Applications/file"}}, launches);
  compare("chown -R", direct, helper, {"/usr/sbin/chown", {"-R", "nobody:admin", "/Applications/file"}}, launches);
  fs::remove_all(root);
}

// SPDX-License-Identifier: Apache-2.0

#include "platform/processes/UserSession.h"

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "foundation/Path.h"
#include "platform/files/SystemCalls.h"
#include "platform/processes/ChildProcess.h"
#include "platform/processes/Pipe.h"
#include "platform/processes/ProcessEnd.h"

namespace {

/// Variables for the user's language and display.
constexpr std::array passedOn = {"LANG",         "LANGUAGE",        "LC_ALL",
                                 "LC_CTYPE",     "LC_MESSAGES",     "DISPLAY",
                                 "XAUTHORITY",   "WAYLAND_DISPLAY", "XDG_CURRENT_DESKTOP",
                                 "XDG_DATA_DIRS"};

std::string groupsOf(const UserAccount& account) {
  constexpr int maxGroups = 1024;
  std::array<gid_t, maxGroups> groups{};
  int count = maxGroups;
  // Unknown accounts, and accounts in more groups, get only their primary group.
  if (::getgrouplist(account.name.c_str(), account.group, groups.data(), &count) < 0) return {};
  std::string text;
  for (int i = 0; i < count; ++i) text += (i > 0 ? "," : "") + std::to_string(groups.at(static_cast<std::size_t>(i)));
  return text;
}

/// Reads the process number that the helper writes once the program runs; nothing when it ends without one.
std::optional<pid_t> readProcess(int pipe) {
  std::array<char, 32> bytes{};
  std::size_t size = 0;
  while (size < bytes.size()) {
    const ssize_t length = ::read(pipe, bytes.data() + size, bytes.size() - size);
    if (length < 0 && errno == EINTR) continue;
    if (length <= 0) return std::nullopt;
    size += static_cast<std::size_t>(length);
    if (bytes.at(size - 1) == '\n') break;
  }
  pid_t process = 0;
  const auto [end, error] = std::from_chars(bytes.data(), bytes.data() + size, process);
  if (error != std::errc() || *end != '\n') return std::nullopt;
  return process;
}

}  // namespace

std::vector<std::string> UserSession::identity() const {
  const UserAccount& account = user_.account();
  if (::geteuid() != 0 || account.id == 0) return {"-"};
  return {std::to_string(account.id), std::to_string(account.group), groupsOf(account)};
}

std::vector<std::string> UserSession::environment() const {
  const UserAccount& account = user_.account();
  std::vector<std::string> variables = {"PATH=/usr/local/bin:/usr/bin:/bin", "HOME=" + account.home,
                                        "USER=" + account.name, "LOGNAME=" + account.name};
  for (const char* const name : passedOn) {
    if (const char* const value = std::getenv(name)) variables.push_back(std::string(name) + "=" + value);
  }
  // Under sudo our own variables are root's. These are the paths of every login session.
  const std::string runtime = "/run/user/" + std::to_string(account.id);
  if (::access(runtime.c_str(), F_OK) == 0) {
    variables.push_back("XDG_RUNTIME_DIR=" + runtime);
    variables.push_back("DBUS_SESSION_BUS_ADDRESS=unix:path=" + runtime + "/bus");
  }
  return variables;
}

Result<FileDescriptor> UserSession::start(const std::string& program, const std::vector<std::string>& arguments) const {
  std::vector<std::string> forHelper = identity();
  for (std::string& variable : environment()) forHelper.push_back(std::move(variable));
  forHelper.emplace_back("--");
  forHelper.push_back(program);
  forHelper.insert(forHelper.end(), arguments.begin(), arguments.end());
  for (const std::string& argument : forHelper) {
    if (argument.find('\0') != std::string::npos) return Error::posix(std::errc::invalid_argument, program);
  }

  auto report = makePipe();
  if (!report) return report.error();
  const auto helper = spawn({joinPath(helpersFolder_, "launch"), forHelper, report->writing.get()});
  if (!helper) return helper.error();
  report->writing.close();
  const auto process = readProcess(report->reading.get());
  // Until the pipe is closed the helper keeps the number from being given to another process.
  FileDescriptor running;
  if (process) running = processEndDescriptor(*process);
  const int error = errno;
  report->reading.close();
  while (::waitpid(*helper, nullptr, 0) < 0 && errno == EINTR) {
  }
  if (!process) return Error::posix(std::errc::executable_format_error, program);
  if (!running) return systemError(error, program);
  return running;
}

// SPDX-License-Identifier: Apache-2.0

#include "platform/macos/MacTools.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "foundation/Path.h"

namespace {

using LastLink = Volume::LastLink;
using Purpose = Volume::Purpose;

struct Tool {
  const char* path;
  const char* executable;
  LastLink lastLink = LastLink::keep;
  bool makesFolders = false;
};

constexpr const char* registrationTool =
    "/System/Library/Frameworks/CoreServices.framework/Versions/A/Frameworks/LaunchServices.framework/Versions/A/"
    "Support/lsregister";

const Tool tools[] = {
    {"/bin/cp", "/bin/cp"},
    {"/bin/rm", "/bin/rm"},
    {"/bin/mv", "/bin/mv"},
    {"/bin/mkdir", "/bin/mkdir", LastLink::follow, /*makesFolders=*/true},
    {"/usr/sbin/chown", "/usr/sbin/chown"},
    {"/bin/chmod", "/bin/chmod"},
    {"/usr/sbin/chmod", "/bin/chmod"},  // where no system has it
    {"/usr/bin/touch", "/usr/bin/touch", LastLink::follow},
    {"/usr/bin/xattr", "/usr/bin/xattr"},
    {registrationTool, registrationTool},
};

/// Whether a link on the way leads nowhere. A tool that is given the path stops there; one that is given what the link
/// stands for would make it.
bool leadsThroughDeadLink(std::string path, const Volume& volume) {
  for (; path != "/"; path = deletingLastPathComponent(path)) {
    const auto itself = volume.realPath(path, LastLink::keep, Purpose::look);
    const auto leadsTo = volume.realPath(path, LastLink::follow, Purpose::look);
    if (!itself || !leadsTo) return true;
    struct stat status {};
    if (::lstat(itself->c_str(), &status) == 0 && S_ISLNK(status.st_mode) && ::access(leadsTo->c_str(), F_OK) != 0) {
      return true;
    }
  }
  return false;
}

}  // namespace

std::optional<ToolCommand> resolveTool(const std::string& path, const std::vector<std::string>& arguments,
                                       const Volume& volume) {
  const auto* const tool = std::ranges::find_if(tools, [&](const Tool& known) { return path == known.path; });
  if (tool == std::end(tools)) return std::nullopt;
  // The database is the running system's.
  if (tool->path == registrationTool && volume.root() != "/") return ToolCommand{"/usr/bin/true", {}};

  ToolCommand command{tool->executable, arguments};
  for (std::string& argument : command.arguments) {
    if (argument.find('\0') != std::string::npos) return std::nullopt;
    if (!argument.starts_with('/')) continue;
    if (tool->makesFolders && leadsThroughDeadLink(argument, volume)) return std::nullopt;
    // Of several paths the last one is changed, unless things are moved.
    const bool isRead = &argument != &command.arguments.back() && path == std::string_view("/bin/cp");
    auto real = volume.realPath(argument, tool->lastLink, isRead ? Purpose::look : Purpose::change);
    if (!real) return std::nullopt;
    argument = *std::move(real);
  }
  return command;
}

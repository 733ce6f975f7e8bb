#include "platform/linux/SystemTools.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "foundation/Path.h"

namespace {

using LastLink = Volume::LastLink;
using Purpose = Volume::Purpose;

bool isPath(const std::string& argument) { return argument.starts_with('/'); }

bool isLink(const std::string& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

/// "name:group" with the numbers for the names, which spares the tool the look-up and knows a Mac's groups; as it is
/// when a name is unknown.
std::string numericOwner(const std::string& owner) {
  const std::size_t colon = owner.find(':');
  if (colon == std::string::npos) return owner;
  const auto user = userNumber(owner.substr(0, colon));
  const auto group = groupNumber(owner.substr(colon + 1));
  if (!user || !group) return owner;
  return "+" + std::to_string(*user) + ":+" + std::to_string(*group);
}

}  // namespace

std::optional<std::string> findExecutable(std::string_view name) {
  for (const std::string_view folder : {"/usr/bin", "/bin", "/usr/sbin", "/sbin"}) {
    std::string path = joinPath(folder, name);
    if (::access(path.c_str(), X_OK) == 0) return path;
  }
  return std::nullopt;
}

const SystemTools::Tool SystemTools::table[] = {
    {"/bin/cp", &SystemTools::copy},
    {"/bin/rm", &SystemTools::remove},
    {"/bin/mkdir", &SystemTools::makeDirectory},
    {"/usr/sbin/chown", &SystemTools::changeOwner},
    {"/bin/chmod", &SystemTools::changeMode},
    {"/usr/sbin/chmod", &SystemTools::changeMode},
    {"/usr/bin/touch", &SystemTools::touch},
    {"/usr/bin/xattr", &SystemTools::removeAttribute},
    {"/System/Library/Frameworks/CoreServices.framework/Versions/A/Frameworks/LaunchServices.framework/Versions/A/"
     "Support/lsregister",
     &SystemTools::updateApplications},
};

SystemTools::SystemTools(const Volume& volume, const PosixUser& user, std::string helpersFolder,
                         std::string applicationsFolder)
    : volume_(volume),
      user_(user),
      helpersFolder_(std::move(helpersFolder)),
      applicationsFolder_(std::move(applicationsFolder)) {}

std::optional<SystemCommand> SystemTools::resolve(const std::string& macPath, const Arguments& arguments) const {
  const auto* const tool = std::ranges::find(table, macPath, &Tool::macPath);
  if (tool == std::end(table)) return std::nullopt;
  return (this->*tool->make)(arguments);
}

std::optional<SystemTools::Arguments> SystemTools::mapped(const Arguments& arguments, LastLink lastLink) const {
  Arguments result;
  for (const std::string& argument : arguments) {
    if (argument.find('\0') != std::string::npos) return std::nullopt;
    if (!isPath(argument)) {
      result.push_back(argument);
      continue;
    }
    auto real = volume_.realPath(argument, lastLink, Purpose::change);
    if (!real) return std::nullopt;
    result.push_back(std::move(*real));
  }
  return result;
}

std::optional<SystemCommand> SystemTools::command(const char* name, std::optional<Arguments> arguments) const {
  auto executable = findExecutable(name);
  if (!executable || !arguments) return std::nullopt;
  return SystemCommand{std::move(*executable), std::move(*arguments)};
}

std::optional<SystemCommand> SystemTools::copy(const Arguments& arguments) const {
  // One of our own: the system's would leave half a copy under the target's name when it fails.
  if (arguments.size() != 3 || arguments[0] != "-R") return std::nullopt;
  const auto source = volume_.realPath(arguments[1], LastLink::keep, Purpose::look);
  const auto target = mapped({arguments[2]}, LastLink::keep);
  const std::string executable = joinPath(helpersFolder_, "cp");
  if (!source || !target || ::access(executable.c_str(), X_OK) != 0) return std::nullopt;
  return SystemCommand{executable, {"-R", *source, target->front()}};
}

std::optional<SystemCommand> SystemTools::remove(const Arguments& arguments) const {
  return command("rm", mapped(arguments, LastLink::keep));
}

std::optional<SystemCommand> SystemTools::makeDirectory(const Arguments& arguments) const {
  // A Mac's mkdir -p stops at a link that leads nowhere. This system's would be given the path that the link stands
  // for.
  for (const std::string& argument : arguments) {
    for (std::string path = argument; isPath(path) && path != "/"; path = deletingLastPathComponent(path)) {
      const auto itself = volume_.realPath(path, LastLink::keep, Purpose::look);
      const auto leadsTo = volume_.realPath(path, LastLink::follow, Purpose::look);
      if (!itself || !leadsTo) return std::nullopt;
      if (isLink(*itself) && ::access(leadsTo->c_str(), F_OK) != 0) return std::nullopt;
    }
  }
  return command("mkdir", mapped(arguments, LastLink::follow));
}

std::optional<SystemCommand> SystemTools::changeOwner(const Arguments& arguments) const {
  auto real = mapped(arguments, LastLink::keep);
  if (real && real->size() == 3) (*real)[1] = numericOwner((*real)[1]);
  return command("chown", std::move(real));
}

std::optional<SystemCommand> SystemTools::changeMode(const Arguments& arguments) const {
  auto real = mapped(arguments, LastLink::keep);
  if (!real || real->size() != 3) return std::nullopt;
  // A Mac's chmod -R leaves a link that it is given alone; this system's would follow it.
  if (isLink(real->back())) return command("true", Arguments());
  // Five digits: with fewer, this system's chmod keeps a folder's set-group-id bit.
  (*real)[1] = std::string("00") + (*real)[1].substr((*real)[1].starts_with('0') ? 1 : 0);
  return command("chmod", std::move(real));
}

std::optional<SystemCommand> SystemTools::touch(const Arguments& arguments) const {
  return command("touch", mapped(arguments, LastLink::follow));
}

std::optional<SystemCommand> SystemTools::removeAttribute(const Arguments& arguments) const {
  const std::string executable = joinPath(helpersFolder_, "xattr");
  auto real = mapped(arguments, LastLink::keep);
  if (!real || ::access(executable.c_str(), X_OK) != 0) return std::nullopt;
  return SystemCommand{executable, std::move(*real)};
}

std::optional<SystemCommand> SystemTools::updateApplications(const Arguments& /*arguments*/) const {
  const auto folder = volume_.realPath(applicationsFolder_, LastLink::follow, Purpose::change);
  if (!folder) return std::nullopt;
  if (::access(folder->c_str(), F_OK) != 0) return command("true", Arguments());  // nothing was ever registered
  auto update = command("update-desktop-database", Arguments{"-q", *folder});
  if (!update || ::geteuid() != 0 || user_.account().id == 0) return update;
  // The database is the user's: root's own would be in their way.
  Arguments arguments = {"--reuid=" + std::to_string(user_.account().id),
                         "--regid=" + std::to_string(user_.account().group), "--clear-groups", "--",
                         update->executable};
  arguments.insert(arguments.end(), update->arguments.begin(), update->arguments.end());
  return command("setpriv", std::move(arguments));
}

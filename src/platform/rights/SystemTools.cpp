#include "platform/rights/SystemTools.h"

#include <fcntl.h>
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

/// The launch of a tool that is going to find nothing to do. It keeps its arguments for who fills them in.
SystemCommand doNothing(const std::vector<std::string>& arguments) {
  return {findExecutable("true").value_or(""), arguments};
}

/// "name:group" with the numbers for the names, which knows a Mac's groups; as it is when a name is unknown.
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

std::optional<SystemCommand> SystemTools::commandOnItem(const std::optional<std::string>& executable,
                                                        const Arguments& arguments, std::size_t options,
                                                        LastLink lastLink) const {
  if (!executable || ::access(executable->c_str(), X_OK) != 0 || arguments.size() != options + 1) return std::nullopt;
  const auto holdsZero = [](const std::string& argument) { return argument.find('\0') != std::string::npos; };
  if (std::ranges::any_of(arguments, holdsZero) || !isPath(arguments.back())) return std::nullopt;
  std::string path = arguments.back();
  std::string missing;  // folders that are not there yet, and what is to be in them
  auto place = volume_.find(path, lastLink, Purpose::change);
  while (!place && place.error().is(std::errc::no_such_file_or_directory) && path != "/") {
    missing = "/" + lastPathComponent(path) + missing;
    path = deletingLastPathComponent(path);
    place = volume_.find(path, LastLink::follow, Purpose::change);
  }
  if (!place) return std::nullopt;
  // Only mkdir makes what is missing. The others would look for it by themselves, and follow links that lead out.
  if (!missing.empty() && lastPathComponent(*executable) != "mkdir") return doNothing(arguments);
  SystemCommand command{*executable, {arguments.begin(), arguments.end() - 1}, std::move(place->folder)};
  command.arguments.push_back("./" + place->name + missing);
  return command;
}

std::optional<SystemCommand> SystemTools::copy(const Arguments& arguments) const {
  // One of our own: the system's would leave half a copy under the target's name when it fails.
  if (arguments.size() != 3 || arguments[0] != "-R" || !isPath(arguments[2])) return std::nullopt;
  const auto source = volume_.realPath(arguments[1], LastLink::keep, Purpose::look);
  auto target = volume_.find(arguments[2], LastLink::keep, Purpose::change);
  const std::string executable = joinPath(helpersFolder_, "cp");
  if (!source || ::access(executable.c_str(), X_OK) != 0) return std::nullopt;
  if (!target && target.error().is(std::errc::no_such_file_or_directory)) return doNothing(arguments);
  if (!target) return std::nullopt;
  return SystemCommand{executable, {"-R", *source, target->name}, std::move(target->folder)};
}

std::optional<SystemCommand> SystemTools::remove(const Arguments& arguments) const {
  return commandOnItem(findExecutable("rm"), arguments, 1, LastLink::keep);
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
  return commandOnItem(findExecutable("mkdir"), arguments, 2, LastLink::follow);
}

std::optional<SystemCommand> SystemTools::changeOwner(const Arguments& arguments) const {
  auto command = commandOnItem(findExecutable("chown"), arguments, 2, LastLink::keep);
  if (!command) return command;
  std::string& owner = command->arguments[1];
  std::string& number = numericOwners_[owner];
  if (number.empty()) number = numericOwner(owner);
  owner = number;
  return command;
}

std::optional<SystemCommand> SystemTools::changeMode(const Arguments& arguments) const {
  // One of our own: the system's would follow a link that is put in the place of the item.
  auto command = commandOnItem(joinPath(helpersFolder_, "chmod"), arguments, 2, LastLink::keep);
  if (command) command->arguments[0] = std::to_string(user_.account().id);
  return command;
}

std::optional<SystemCommand> SystemTools::touch(const Arguments& arguments) const {
  return commandOnItem(findExecutable("touch"), arguments, 0, LastLink::follow);
}

std::optional<SystemCommand> SystemTools::removeAttribute(const Arguments& arguments) const {
  return commandOnItem(joinPath(helpersFolder_, "xattr"), arguments, 2, LastLink::keep);
}

std::optional<SystemCommand> SystemTools::updateApplications(const Arguments& /*arguments*/) const {
  const auto folder = volume_.realPath(applicationsFolder_, LastLink::follow, Purpose::change);
  if (!folder) return std::nullopt;
  if (::access(folder->c_str(), F_OK) != 0) return doNothing({});  // nothing was ever registered
  const auto executable = findExecutable("update-desktop-database");
  if (!executable) return std::nullopt;
  SystemCommand update{*executable, {"-q", *folder}};
  if (::geteuid() != 0 || user_.account().id == 0) return update;
  // The database is the user's: root's own would be in their way.
  Arguments arguments = {"--reuid=" + std::to_string(user_.account().id),
                         "--regid=" + std::to_string(user_.account().group), "--clear-groups", "--", update.executable};
  arguments.insert(arguments.end(), update.arguments.begin(), update.arguments.end());
  return SystemCommand{findExecutable("setpriv").value_or(""), std::move(arguments)};
}

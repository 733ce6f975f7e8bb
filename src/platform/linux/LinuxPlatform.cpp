// SPDX-License-Identifier: Apache-2.0

#include "platform/linux/LinuxPlatform.h"

#include <dlfcn.h>
#include <malloc.h>

#include <utility>

#include "foundation/Path.h"
#include "platform/files/VolumeCheck.h"
#include "platform/posix/ProcessSetUp.h"

namespace {

Error noWindow(const std::string& problem) {
  return {.domain = std::string(noWindowDomain), .userInfo = {{std::string(Error::localizedDescriptionKey), problem}}};
}

/// Null, and the problem, when there is no window to be had. The module stays loaded until the program ends.
std::unique_ptr<UserInterface> loadWindow(const std::string& bundlePath, const WindowServices& services,
                                          std::string& problem) {
  const std::string path = joinPath(bundlePath, "Contents/PlugIns/Window.so");
  void* const module = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) {
    problem = ::dlerror();
    return nullptr;
  }
  auto* const make = reinterpret_cast<MakeWindowInterface*>(::dlsym(module, windowModuleEntry));
  if (make == nullptr) {
    problem = ::dlerror();
    return nullptr;
  }
  std::unique_ptr<UserInterface> made(make(services, problem));
  if (made == nullptr && problem.empty()) problem = "there is no window to be had";
  return made;
}

}  // namespace

LinuxPlatform::LinuxPlatform(Volume volume, const std::string& bundlePath, UserAccount user,
                             const MakeInterface& makeInterface, Surface surface)
    : user_(std::move(user), preferredLanguages()),
      volume_(std::move(volume)),
      places_(volume_, homeOnVolume(volume_.root(), user_.account()), user_.account().id),
      files_(volume_, user_, [this](const std::string& resolved) { return places_.reach(resolved); }),
      folders_(files_, homeOnVolume(volume_.root(), user_.account())),
      bundles_(bundlePath, files_, user_, log_),
      preferences_(files_, folders_, log_),
      applicationsFolder_(applicationsFolderIn(folders_.homeDirectory())),
      authorizations_(volume_, user_.account(), places_, applicationsFolder_,
                      {joinPath(bundlePath, "Contents/Helpers"), volume_.root(), surface,
                       [this, surface] {  // a window goes on being painted
                         if (surface == Surface::window) platform_.runLoop.runUntilDate(RunLoop::Clock::now());
                       },
                       SignalInterruptions::note},
                      log_),
      interface_(makeInterface({files_, bundles_, user_, log_})),
      tasks_(interface_->runLoop(), notifications_),
      desktopEntries_(volume_, files_, bundles_, applicationsFolder_),
      metadataQueries_(volume_, interface_->runLoop()),
      workspace_(volume_, files_, bundles_, user_, log_, interface_->runLoop(),
                 UserSession(user_, joinPath(bundlePath, "Contents/Helpers"))),
      platform_{.files = files_,
                .bundles = bundles_,
                .folders = folders_,
                .preferences = preferences_,
                .authorizations = authorizations_,
                .tasks = tasks_,
                .runLoop = interface_->runLoop(),
                .notifications = notifications_,
                .launchServices = desktopEntries_,
                .metadataQueries = metadataQueries_,
                .workspace = workspace_,
                .toolkit = interface_->toolkit(),
                .processor = processor_,
                .identifiers = identifiers_,
                .log = log_,
                .user = user_,
                .clock = clock_,
                .interruptions = interruptions_} {
  interruptions_.setRunLoop(interface_->runLoop());
}

std::string LinuxPlatform::shownPath(const std::string& path) const { return joinPath(volume_.root(), path); }

Result<std::unique_ptr<SystemPlatform>> makeSystemPlatform(const std::string& target, Surface surface) {
  setUpProcess();
  // Large lists are returned to the system when they are done with: the C library would keep them from the second on.
  static_cast<void>(::mallopt(M_MMAP_THRESHOLD, 128 * 1024));
  auto user = loggedInUser();
  if (!user) return user.error();
  const auto bundle = bundleOfOwnProgram("/proc/self/exe");
  if (!bundle) return Error::posix(std::errc::no_such_file_or_directory, "the bundle that the program should lie in");
  auto volume = openMacVolume(target, *bundle, user->id);
  if (!volume) return volume.error();
  std::string problem;
  const auto makeInterface = [&](const WindowServices& services) {
    std::unique_ptr<UserInterface> made;
    if (surface == Surface::window) made = loadWindow(*bundle, services, problem);
    if (made == nullptr) made = std::make_unique<ConsoleInterface>();
    return made;
  };
  auto system = std::make_unique<LinuxPlatform>(std::move(*volume), *bundle, std::move(*user), makeInterface, surface);
  if (!problem.empty()) return noWindow(problem);
  return std::unique_ptr<SystemPlatform>(std::move(system));
}

Result<std::unique_ptr<SystemPlatform>> makePlatformForMaker(const std::string& bundle, const std::string& volume) {
  setUpProcess();
  auto user = loggedInUser();
  if (!user) return user.error();
  const auto path = bundle.empty() ? bundleOfOwnProgram("/proc/self/exe") : realPath(bundle);
  const auto root = volume.empty() ? volume : realPath(volume);
  if (!path || !root) return Error::posix(std::errc::no_such_file_or_directory, path ? volume : bundle);
  const auto noWindow = [](const WindowServices&) { return std::make_unique<ConsoleInterface>(); };
  return std::unique_ptr<SystemPlatform>(
      std::make_unique<LinuxPlatform>(Volume(*root, *path), *path, std::move(*user), noWindow));
}

Error becomeHelper(const std::string& name, const std::vector<std::string>& arguments) {
  const auto bundle = bundleOfOwnProgram("/proc/self/exe");
  return becomeProgram(joinPath({bundle.value_or(""), "Contents/Helpers", name}), arguments);
}

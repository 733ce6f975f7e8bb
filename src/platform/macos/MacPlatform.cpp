// SPDX-License-Identifier: Apache-2.0

#include "platform/macos/MacPlatform.h"

#include <mach-o/dyld.h>
#include <unistd.h>

#include <cstdint>
#include <utility>

#include "foundation/Path.h"
#include "platform/files/VolumeCheck.h"
#include "platform/macos/MacLanguages.h"
#include "platform/macos/MacPreferences.h"
#include "platform/posix/ProcessSetUp.h"
#include "platform/propertylist/PropertyListPreferences.h"
#include "platform/window/appkit/AppKitUserInterface.h"

namespace {

std::string ownProgram() {
  std::uint32_t size = 0;
  static_cast<void>(::_NSGetExecutablePath(nullptr, &size));
  std::string path(size, '\0');
  if (::_NSGetExecutablePath(path.data(), &size) != 0) return {};
  path.resize(path.find('\0'));
  return path;
}

}  // namespace

MacPlatform::MacPlatform(Volume volume, const std::string& bundlePath, UserAccount user,
                         std::vector<std::string> languages, const MakeInterface& makeInterface, Surface surface)
    : user_(std::move(user), std::move(languages)),
      volume_(std::move(volume)),
      places_(volume_, homeOnVolume(volume_.root(), user_.account()), user_.account().id),
      files_(volume_, user_, [this](const std::string& resolved) { return places_.reach(resolved); }),
      folders_(files_, homeOnVolume(volume_.root(), user_.account())),
      bundles_(bundlePath, files_, user_, log_),
      preferences_(makePreferences()),
      authorizations_(volume_, user_.account(), places_,  // The thread that keeps a window alive has no time to copy.
                      surface == Surface::window ? CopyPool::Caller::onlyWaits : CopyPool::Caller::helps),
      interface_(makeInterface({files_, bundles_, user_, log_})),
      tasks_(interface_->runLoop(), notifications_),
      launchServices_(volume_),
      metadataQueries_(volume_, interface_->runLoop()),
      workspace_(volume_, files_, bundles_),
      platform_{.files = files_,
                .bundles = bundles_,
                .folders = folders_,
                .preferences = *preferences_,
                .authorizations = authorizations_,
                .tasks = tasks_,
                .runLoop = interface_->runLoop(),
                .notifications = notifications_,
                .launchServices = launchServices_,
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

std::unique_ptr<Preferences> MacPlatform::makePreferences() {
  // The system's service keeps those of this process's own user on the running system, and no others.
  if (volume_.root() == "/" && user_.account().id == ::geteuid()) return std::make_unique<MacPreferences>(log_);
  return std::make_unique<PropertyListPreferences>(files_, folders_, log_);
}

std::string MacPlatform::shownPath(const std::string& path) const { return joinPath(volume_.root(), path); }

Result<std::unique_ptr<SystemPlatform>> makeSystemPlatform(const std::string& target, Surface surface) {
  setUpProcess();
  auto user = loggedInUser();
  if (!user) return user.error();
  const auto bundle = bundleOfOwnProgram(ownProgram());
  if (!bundle) return Error::posix(std::errc::no_such_file_or_directory, "the bundle that the program should lie in");
  auto volume = openMacVolume(target, *bundle, user->id);
  if (!volume) return volume.error();
  const std::string root = volume->root();
  std::string problem;
  const auto makeInterface = [&](const WindowServices& services) {
    std::unique_ptr<UserInterface> made;
    if (surface == Surface::window) made = makeAppKitInterface(services, root, problem);
    if (made == nullptr) made = std::make_unique<ConsoleInterface>();
    return made;
  };
  auto system = std::make_unique<MacPlatform>(std::move(*volume), *bundle, std::move(*user),
                                              preferredLanguagesOfSystem(), makeInterface, surface);
  if (!problem.empty()) {
    return Error{.domain = std::string(noWindowDomain),
                 .userInfo = {{std::string(Error::localizedDescriptionKey), problem}}};
  }
  return std::unique_ptr<SystemPlatform>(std::move(system));
}

Result<std::unique_ptr<SystemPlatform>> makePlatformForMaker(const std::string& bundle, const std::string& volume) {
  setUpProcess();
  auto user = loggedInUser();
  if (!user) return user.error();
  const auto path = bundle.empty() ? bundleOfOwnProgram(ownProgram()) : realPath(bundle);
  const auto root = volume.empty() ? volume : realPath(volume);
  if (!path || !root) return Error::posix(std::errc::no_such_file_or_directory, path ? volume : bundle);
  const auto noWindow = [](const WindowServices&) { return std::make_unique<ConsoleInterface>(); };
  return std::unique_ptr<SystemPlatform>(std::make_unique<MacPlatform>(Volume(*root, *path), *path, std::move(*user),
                                                                       preferredLanguagesOfSystem(), noWindow));
}

Error becomeHelper(const std::string& name, const std::vector<std::string>& arguments) {
  const auto bundle = bundleOfOwnProgram(ownProgram());
  return becomeProgram(joinPath({bundle.value_or(""), "Contents/Helpers", name}), arguments);
}

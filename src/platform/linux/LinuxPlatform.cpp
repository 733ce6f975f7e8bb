#include "platform/linux/LinuxPlatform.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <utility>

#include "foundation/Path.h"
#include "platform/files/SystemCalls.h"
#include "platform/files/VolumeCheck.h"

namespace {

/// Without links; nothing when the path leads nowhere.
std::optional<std::string> realPath(const std::string& path) {
  const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
  if (real == nullptr) return std::nullopt;
  return std::string(real.get());
}

/// The bundle that holds this program at Contents/MacOS.
std::optional<std::string> ownBundle() {
  const auto program = realPath("/proc/self/exe");
  if (!program) return std::nullopt;
  const std::string folder = deletingLastPathComponent(*program);
  const std::string contents = deletingLastPathComponent(folder);
  if (lastPathComponent(folder) != "MacOS" || lastPathComponent(contents) != "Contents") return std::nullopt;
  return deletingLastPathComponent(contents);
}

/// What a program that starts others, and is started by anyone, must not leave to chance.
void setUpProcess() {
  // A standard descriptor that came closed would be given to the next file that is opened.
  int descriptor = 0;
  do {
    descriptor = ::open("/dev/null", O_RDWR);
  } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
  if (descriptor > STDERR_FILENO) ::close(descriptor);
  // Nobody reading our output, or a limit on the size of files, is an error like any other and not the end of an
  // install.
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
  static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
  ::umask(022);
}

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
  const auto unusable = [&](int number) { return systemError(number, "cannot install into \"" + target + "\""); };
  const auto root = realPath(target);
  if (!root) return unusable(errno);
  FileDescriptor handle(::open(root->c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!handle || ::access(root->c_str(), X_OK) != 0) return unusable(errno);
  auto user = loggedInUser();
  if (!user) return user.error();
  if (Status volume = checkMacVolume(handle.get(), user->id, target); !volume) return volume.error();
  const auto bundle = ownBundle();
  if (!bundle) return Error::posix(std::errc::no_such_file_or_directory, "the bundle that the program should lie in");
  std::string problem;
  const auto makeInterface = [&](const WindowServices& services) {
    std::unique_ptr<UserInterface> made;
    if (surface == Surface::window) made = loadWindow(*bundle, services, problem);
    if (made == nullptr) made = std::make_unique<ConsoleInterface>();
    return made;
  };
  auto system = std::make_unique<LinuxPlatform>(Volume(std::move(handle), *root, *bundle), *bundle, std::move(*user),
                                                makeInterface, surface);
  if (!problem.empty()) return noWindow(problem);
  return std::unique_ptr<SystemPlatform>(std::move(system));
}

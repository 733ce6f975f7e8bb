// SPDX-License-Identifier: Apache-2.0

#include "platform/linux/LinuxWorkspace.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <csignal>
#include <utility>

#include "foundation/Path.h"
#include "foundation/Text.h"
#include "platform/propertylist/BundleOnDisk.h"

namespace {

class LaunchedApplication : public RunningApplication {
 public:
  explicit LaunchedApplication(FileDescriptor process) : process_(std::move(process)) {}

  void terminate() override {
    // By its descriptor: the number may be another process's by now. One that has ended has nothing to be told.
    static_cast<void>(::syscall(SYS_pidfd_send_signal, process_.get(), SIGTERM, nullptr, 0));
  }

 private:
  FileDescriptor process_;
};

std::string nameWithoutExtension(const std::string& path) {
  const std::string name = lastPathComponent(path);
  const std::string_view extension = pathExtension(name);
  return extension.empty() ? name : name.substr(0, name.size() - extension.size() - 1);
}

}  // namespace

LinuxWorkspace::LinuxWorkspace(const Volume& volume, const FileSystem& files, const Bundles& bundles,
                               const PosixUser& user, Log& log, DescriptorRunLoop& runLoop, UserSession session,
                               std::string urlOpener)
    : volume_(volume),
      files_(files),
      bundles_(bundles),
      user_(user),
      log_(log),
      system_("/", bundles.mainBundle().bundlePath()),
      systemFiles_(system_, user, [](const std::string&) { return false; }),
      session_(std::move(session)),
      urlOpener_(std::move(urlOpener)),
      watch_(std::make_shared<ApplicationWatch>(
          runLoop, [this](const std::string& realPath) { return nameOfBundle(realPath); })) {}

std::string LinuxWorkspace::nameOfBundle(const std::string& realPath) const {
  const std::string name = BundleOnDisk(realPath, systemFiles_, user_, log_).infoValue("CFBundleName").text();
  return !name.empty() ? name : nameWithoutExtension(realPath);
}

std::vector<std::string> LinuxWorkspace::launchedApplications() const { return watch_->namesOfRunning(); }

Workspace::Observation LinuxWorkspace::observeTerminations(TerminationHandler handler) {
  return watch_->observe(std::move(handler));
}

Workspace::Observation LinuxWorkspace::observeLaunches(LaunchHandler handler) {
  return watch_->observeLaunches(std::move(handler));
}

std::unique_ptr<RunningApplication> LinuxWorkspace::launchHidden(const std::string& path,
                                                                 const std::vector<std::string>& arguments) {
  const auto bundle = bundles_.bundleAtPath(path);
  if (bundle == nullptr) return nullptr;
  std::string name = bundle->infoValue("CFBundleExecutable").text();
  if (name.empty()) name = nameWithoutExtension(path);
  if (!isFileName(name)) return nullptr;
  const auto program =
      volume_.realPath(joinPath({path, "Contents/MacOS", name}), Volume::LastLink::follow, Volume::Purpose::look);
  if (!program) return nullptr;
  // Every start is a new instance here, and hiding is left to what the arguments ask of the application.
  auto process = session_.start(*program, arguments);
  if (!process) return nullptr;
  return std::make_unique<LaunchedApplication>(std::move(*process));
}

void LinuxWorkspace::openUrl(const std::string& url) {
  if (url.empty() || url.starts_with('-')) return;  // would be an option
  static_cast<void>(session_.start(urlOpener_, {url}));
}

void LinuxWorkspace::openItem(const std::string& path) {
  const auto real = volume_.realPath(path, Volume::LastLink::follow, Volume::Purpose::look);
  if (real) openUrl(*real);
}

std::string LinuxWorkspace::iconFile(const std::string& path) const { return iconFileOf(path, bundles_, files_); }

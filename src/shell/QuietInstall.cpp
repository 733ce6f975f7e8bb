#include "shell/QuietInstall.h"

#include <ostream>
#include <string>

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "foundation/Text.h"
#include "hosts/HostsModel.h"
#include "install/InstallFilesController.h"
#include "payload/InstallerTexts.h"
#include "payload/PlugInFilesModel.h"

namespace {

class Summary {
 public:
  Summary(SystemPlatform& system, std::ostream& output) : system_(system), output_(output) {}

  void write(const HostList& hosts, const InstallFilesController& controller) {
    const bool succeeded = !controller.authDenied() && !controller.fileOpErrorOccurred();
    line(formatted(succeeded ? text("quiet_succeeded", "%1$@ was installed on %2$@")
                             : text("quiet_failed", "%1$@ was not installed completely on %2$@"),
                   productName(platform()), system_.shownPath("/")));
    list(text("quiet_hosts", "Hosts found: %@"), hosts.size());
    for (const auto& host : hosts) {
      const std::string folder = joinPath({host->plugInPath()});
      line("  " + host->hostName() + (folder.empty() ? "" : "  (" + folder + ")"));
    }
    list(text("quiet_items", "Items installed: %@"), controller.installedPaths().size());
    list(text("quiet_failures", "Failures: %@"), controller.failedPaths().size());
    for (const std::string& path : controller.failedPaths()) line("  " + path);
    if (controller.authDenied()) line("  " + text("quiet_denied", "Administrator rights were refused."));
    if (controller.fileOpErrorOccurred() && controller.failedPaths().empty()) {
      line("  " + platform().bundles.mainBundle().localizedString("auth_error"));
    }
    if (controller.isLogWritten()) {
      line(formatted(text("quiet_log", "Log: %@"), system_.shownPath(PlugInFilesModel(platform()).installerLogPath())));
    }
  }

 private:
  [[nodiscard]] Platform& platform() { return system_.platform(); }

  /// A summary is worth having even where a maker's tables do not know it.
  std::string text(std::string_view key, std::string_view english) {
    return platform().bundles.mainBundle().localizedString(key, english, "Localizable");
  }

  void list(const std::string& format, std::size_t count) { line(formatted(format, std::to_string(count))); }
  void line(const std::string& text) { output_ << onOneLine(text) << '\n'; }

  SystemPlatform& system_;
  std::ostream& output_;
};

}  // namespace

void runQuietInstall(SystemPlatform& system, std::ostream& output) {
  Platform& platform = system.platform();
  InstallFilesController controller(platform);
  const HostsModel model(platform);
  const HostList hosts = model.foundHosts();
  controller.install(hosts, /*shouldConfigureLumatraExternalEditors=*/true);
  Summary(system, output).write(hosts, controller);
  output.flush();
}

// SPDX-License-Identifier: Apache-2.0

#include "shell/QuietInstall.h"

#include <ostream>
#include <string>
#include <vector>

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "foundation/Text.h"
#include "hosts/HostsModel.h"
#include "install/InstallFilesController.h"
#include "install/tasks/FileErrorReporting.h"
#include "payload/InstallerTexts.h"
#include "payload/PlugInFilesModel.h"

namespace {

/// The summary of an install, for people and for scripts.
class Summary {
 public:
  Summary(SystemPlatform& system, std::ostream& output) : system_(system), output_(output) {}

  void write(const HostList& hosts, const InstallFilesController& controller) {
    const InstallReport& report = controller.report();
    const bool succeeded = !controller.authDenied() && !controller.fileOpErrorOccurred() && !report.wasCutShort();
    line(formatted(succeeded ? text("quiet_succeeded", "%1$@ was installed on %2$@")
                             : text("quiet_failed", "%1$@ was not installed completely on %2$@"),
                   shownProductName(platform()), system_.shownPath("/")));
    writeHosts(hosts);
    writeItems(report);
    count(text("quiet_failures", "Failures: %@"), report.failures.size());
    list(report.failures);
    if (controller.authDenied()) line("  " + text("quiet_denied", "Administrator rights were refused."));
    if (report.shortage) line("  " + shortageText(platform(), *report.shortage));
    const bool isUnexplained =
        controller.fileOpErrorOccurred() && report.failures.empty() && report.unreadable.empty() && !report.shortage;
    if (isUnexplained) line("  " + platform().bundles.mainBundle().localizedString("auth_error"));
    writeRest(report);
  }

 private:
  void writeHosts(const HostList& hosts) {
    count(text("quiet_hosts", "Hosts found: %@"), hosts.size());
    for (const auto& host : hosts) {
      const std::string folder = joinPath({host->plugInPath()});
      line("  " + host->hostName() + (folder.empty() ? "" : "  (" + folder + ")"));
    }
  }

  void writeItems(const InstallReport& report) {
    const std::size_t items = report.installedPaths.size();
    const std::size_t places = report.placeCount();
    if (items == places) return count(text("quiet_items", "Items installed: %@"), items);
    line(formatted(text("quiet_items_places", "Items installed: %1$@, in %2$@ places"), std::to_string(items),
                   std::to_string(places)));
  }

  void writeRest(const InstallReport& report) {
    if (!report.unreadable.empty()) {
      count(text("quiet_unreadable", "Could not be read: %@"), report.unreadable.size());
      list(report.unreadable);
    }
    if (!report.attributes.empty()) {
      count(text("quiet_attributes", "Items without the right owner or mode: %@"), report.attributes.size());
      list(report.attributes);
    }
    if (!report.leftBehind.empty()) {
      count(text("quiet_left", "Hidden items that could not be removed: %@"), report.leftBehind.size());
      list(report.leftBehind);
    }
    if (report.interruption) {
      line(formatted(interruptionText(report.interruption->moment), std::to_string(report.interruption->signal)));
    }
    if (report.isLogWritten) {
      line(formatted(text("quiet_log", "Log: %@"), system_.shownPath(PlugInFilesModel(platform()).installerLogPath())));
    } else if (!report.installedPaths.empty()) {
      line(text("quiet_no_log", "The log of installed paths could not be written."));
    }
  }

  [[nodiscard]] std::string interruptionText(Interruption::Moment moment) {
    switch (moment) {
      case Interruption::Moment::beforeChanges:
        return text("quiet_interrupted", "Stopped by signal %@. Nothing was changed.");
      case Interruption::Moment::betweenItems:
        return text("quiet_stopped", "Stopped by signal %@ before all items were installed.");
      case Interruption::Moment::tooLate: return text("quiet_completed", "Signal %@ came too late to stop.");
    }
    return {};
  }

  [[nodiscard]] Platform& platform() { return system_.platform(); }

  /// A summary is worth having even where a maker's tables do not know it.
  std::string text(std::string_view key, std::string_view english) {
    return platform().bundles.mainBundle().localizedString(key, english, "Localizable");
  }

  void list(const std::vector<ReportedProblem>& problems) {
    for (const auto& [path, reason] : problems) {
      const std::string why = reason.reason();
      line("  " + path + (why.empty() ? "" : ": " + why));
    }
  }
  void count(const std::string& format, std::size_t number) { line(formatted(format, std::to_string(number))); }
  void line(const std::string& text) { output_ << onOneLine(text) << '\n'; }

  SystemPlatform& system_;
  std::ostream& output_;
};

}  // namespace

QuietOutcome runQuietInstall(SystemPlatform& system, std::ostream& output) {
  Platform& platform = system.platform();
  InstallFilesController controller(platform);
  const HostsModel model(platform);
  const HostList hosts = model.foundHosts();
  controller.install(hosts, /*shouldConfigureLumatraExternalEditors=*/true);
  Summary(system, output).write(hosts, controller);
  output.flush();
  return {.signal = platform.interruptions.requested(), .isSummaryWritten = static_cast<bool>(output)};
}

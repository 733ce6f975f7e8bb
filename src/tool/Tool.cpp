// SPDX-License-Identifier: Apache-2.0

#include "tool/Tool.h"

#include <istream>
#include <ostream>

#include "foundation/Path.h"
#include "foundation/Text.h"
#include "kit/CheckBundle.h"
#include "kit/NewBundle.h"
#include "tool/CheckCommand.h"
#include "tool/Json.h"
#include "tool/MunkiItem.h"
#include "tool/RemoveCommand.h"

namespace {

/// Of a program that a signal has ended, as shells tell it: this and the number of the signal.
constexpr int statusSignal = 128;

/// Who reads the answers of the tool has no use for what the discovery of hosts notes in passing.
class NoLog : public Log {
 public:
  void write(std::string_view /*message*/) override {}
};

Platform withLog(const Platform& platform, Log& log) {
  return {.files = platform.files,
          .bundles = platform.bundles,
          .folders = platform.folders,
          .preferences = platform.preferences,
          .authorizations = platform.authorizations,
          .tasks = platform.tasks,
          .runLoop = platform.runLoop,
          .notifications = platform.notifications,
          .launchServices = platform.launchServices,
          .metadataQueries = platform.metadataQueries,
          .workspace = platform.workspace,
          .toolkit = platform.toolkit,
          .processor = platform.processor,
          .identifiers = platform.identifiers,
          .log = log,
          .user = platform.user,
          .clock = platform.clock,
          .interruptions = platform.interruptions};
}

/// One run of the tool.
class Tool {
 public:
  Tool(const ToolRequest& request, SystemPlatform& system, const ToolStreams& streams)
      : request_(request),
        platform_(withLog(system.platform(), log_)),
        volume_(system.shownPath("/")),
        texts_(&platform_),
        streams_(streams) {}

  ToolStatus run() {
    switch (request_.command) {
      case ToolRequest::Command::plan: return plan();
      case ToolRequest::Command::hosts: return hosts();
      case ToolRequest::Command::verify: return verify();
      case ToolRequest::Command::remove: return removeInstalled(request_, platform_, volume_, streams_);
      case ToolRequest::Command::check: return check();
      case ToolRequest::Command::make: return make();
      case ToolRequest::Command::munki:
      case ToolRequest::Command::pack:  // scripts
      case ToolRequest::Command::preview: break;
    }
    streams_.output << munkiItem(texts_, request_.folder);
    return ToolStatus::success;
  }

 private:
  ToolStatus plan() {
    const PlanReport report = makePlanReport(platform_);
    if (request_.isJson) {
      streams_.output << planJson(report, volume_, texts_);
    } else {
      writePlan(report, volume_, texts_, streams_.output);
    }
    return ToolStatus::success;
  }

  ToolStatus hosts() {
    const std::vector<HostFacts> facts = HostSurvey(platform_).facts();
    if (request_.isJson) {
      streams_.output << hostsJson(facts, volume_, texts_);
    } else {
      writeHosts(facts, texts_, streams_.output);
    }
    return ToolStatus::success;
  }

  /// The volume is the folder that the new one is made in.
  ToolStatus make() {
    const std::string name = lastPathComponent(request_.kit.newFolder);
    const Status made = makeNewBundle(platform_, joinPath("/", name));
    if (made) {
      streams_.output << onOneLine(request_.kit.newFolder + " is ready: see its Read Me.txt") << '\n';
      return ToolStatus::success;
    }
    streams_.errors << onOneLine("InstallerTool: " + request_.kit.newFolder + ": " + made.error().reason()) << '\n';
    return ToolStatus::cannotCreate;
  }

  ToolStatus check() {
    if (!platform_.files.exists(platform_.bundles.mainBundle().resourcePath())) {
      streams_.errors << onOneLine("InstallerTool: " + request_.kit.bundle + " is no installer's bundle") << '\n';
      return ToolStatus::noInput;
    }
    const std::vector<Finding> findings = checkBundle(platform_);
    if (platform_.interruptions.requested()) return ToolStatus::differences;  // run() gives the signal's
    if (request_.isJson) {
      streams_.output << findingsJson(findings, request_.kit.bundle);
    } else {
      writeFindings(findings, request_.kit.bundle, streams_.output);
    }
    return findings.empty() ? ToolStatus::success : ToolStatus::differences;
  }

  ToolStatus verify() {
    const VerifyReport report = verifyInstall(platform_, request_.isOnlyLogged);
    if (request_.isJson) {
      streams_.output << verifyJson(report, volume_, texts_);
    } else {
      writeVerify(report, volume_, texts_, streams_.output);
    }
    const bool isIntact = report.differences.empty() && report.errors.empty();
    return isIntact ? ToolStatus::success : ToolStatus::differences;
  }

  const ToolRequest& request_;
  NoLog log_;
  Platform platform_;
  std::string volume_;
  ToolTexts texts_;
  ToolStreams streams_;
};

}  // namespace

int runTool(const ToolRequest& request, SystemPlatform& system, const ToolStreams& streams) {
  const ToolStatus status = Tool(request, system, streams).run();
  const auto signal = system.platform().interruptions.requested();
  return signal ? statusSignal + *signal : static_cast<int>(status);
}

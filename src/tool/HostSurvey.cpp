// SPDX-License-Identifier: Apache-2.0

#include "tool/HostSurvey.h"

#include <algorithm>
#include <ostream>
#include <set>

#include "foundation/Format.h"
#include "foundation/MachO.h"
#include "foundation/Path.h"
#include "foundation/Text.h"
#include "hosts/HostsModel.h"
#include "hosts/LightRoomHostModel.h"
#include "hosts/PhotoshopHostModel.h"
#include "payload/Payload.h"

namespace {

/// Versions with full stops, number by number; what is missing counts as 0.
bool isOlder(std::string_view version, std::string_view than) {
  const auto left = split(version, '.');
  const auto right = split(than, '.');
  for (std::size_t i = 0; i < std::max(left.size(), right.size()); ++i) {
    const std::int64_t number = i < left.size() ? integerValue(left[i]) : 0;
    const std::int64_t other = i < right.size() ? integerValue(right[i]) : 0;
    if (number != other) return number < other;
  }
  return false;
}

std::string versionOf(const Bundle& bundle) {
  const std::string shown = bundle.infoValue("CFBundleShortVersionString").text();
  return shown.empty() ? bundle.infoValue("CFBundleVersion").text() : shown;
}

/// Whether a process of this architecture loads code for one of the others. Nobody runs the remaining ones any more.
bool loads(std::string_view process, const std::vector<std::string>& code) {
  return std::ranges::any_of(code, [&](const std::string& architecture) {
    const bool isWithin = process == "x86_64h" && architecture == "x86_64";
    return architecture == process || isWithin;
  });
}

/// Names of the plug-ins that the payload brings for Photoshop.
std::vector<std::string> plugInPaths(Platform& platform) {
  const Payload payload(platform);
  std::vector<std::string> paths;
  for (const WalkedItem& item : payload.filesBelow(payload.folder("PHOTOSHOP_PLUGINS")).items) {
    if (item.isPackage) paths.push_back(item.path);
  }
  return paths;
}

}  // namespace

HostSurvey::HostSurvey(Platform& platform) : platform_(platform), hosts_(HostsModel(platform).foundHosts()) {
  for (const std::string& path : plugInPaths(platform)) plugIns_.push_back(offer(path));
}

std::vector<HostFacts> HostSurvey::facts() const {
  std::vector<HostFacts> all;
  for (const auto& host : hosts_) all.push_back(factsOf(*host));
  return all;
}

OfferedPlugIn HostSurvey::offer(const std::string& path) const {
  OfferedPlugIn plugIn{.path = path, .architectures = architecturesOf(path)};
  if (const auto bundle = platform_.bundles.bundleAtPath(path)) {
    plugIn.version = versionOf(*bundle);
    plugIn.minimumHostVersion = bundle->infoValue("MinimumHostVersion").text();
  }
  return plugIn;
}

HostFacts HostSurvey::factsOf(const HostModel& host) const {
  HostFacts facts{.name = host.hostName(), .folder = joinPath({host.plugInPath()}), .application = applicationOf(host)};
  if (const auto bundle = facts.application.empty() ? nullptr : platform_.bundles.bundleAtPath(facts.application)) {
    facts.version = versionOf(*bundle);
    facts.architectures = architecturesOf(facts.application);
  }
  if (facts.folder.empty()) return facts;
  for (const OfferedPlugIn& plugIn : plugIns_) judge(facts, plugIn);
  const bool isKnown = !facts.architectures.empty() && std::ranges::none_of(plugIns_, [](const OfferedPlugIn& plugIn) {
    return plugIn.architectures.empty();
  });
  if (!facts.problems.empty()) {
    facts.canLoad = false;
  } else if (isKnown && !plugIns_.empty()) {
    facts.canLoad = true;
  }
  findOlderCopies(facts, host);
  return facts;
}

std::string HostSurvey::applicationOf(const HostModel& host) const {
  std::vector<std::string> folders;
  if (const auto* photoshop = dynamic_cast<const PhotoshopHostModel*>(&host)) {
    folders = {photoshop->appPath()};
  } else if (dynamic_cast<const LightRoomHostModel*>(&host) != nullptr) {
    const std::string applications = platform_.folders.localApplications();
    folders = {joinPath(applications, host.hostName()), applications};
  }
  for (const std::string& folder : folders) {
    std::string first;
    for (const WalkedItem& item : platform_.files.visibleEntries(folder)) {
      if (pathExtension(item.path) != "app") continue;
      const bool isNamedSo = lastPathComponent(item.path).starts_with(host.hostName());
      if (isNamedSo) return item.path;
      if (first.empty() && folder != platform_.folders.localApplications()) first = item.path;
    }
    if (!first.empty()) return first;
  }
  return {};
}

std::vector<std::string> HostSurvey::architecturesOf(const std::string& bundlePath) const {
  const auto bundle = platform_.bundles.bundleAtPath(bundlePath);
  if (bundle == nullptr) return {};
  const std::string executable = bundle->infoValue("CFBundleExecutable").text();
  if (executable.empty()) return {};
  const auto header = platform_.files.readFile(joinPath({bundlePath, "Contents/MacOS", executable}), machOHeaderBytes);
  return header ? architecturesOfMachO(*header).value_or(std::vector<std::string>()) : std::vector<std::string>();
}

void HostSurvey::judge(HostFacts& facts, const OfferedPlugIn& plugIn) const {
  using Kind = LoadingProblem::Kind;
  const std::string name = lastPathComponent(plugIn.path);
  for (const std::string& architecture : facts.architectures) {
    if (plugIn.architectures.empty() || loads(architecture, plugIn.architectures)) continue;
    facts.problems.push_back({.kind = Kind::architecture, .plugIn = name, .detail = architecture});
  }
  const std::string& needed = plugIn.minimumHostVersion;
  if (facts.version.empty() || needed.empty() || !isOlder(facts.version, needed)) return;
  facts.problems.push_back({.kind = Kind::hostVersion, .plugIn = name, .detail = needed});
}

/// A host that finds two plug-ins of one name loads the one that it comes across first.
void HostSurvey::findOlderCopies(HostFacts& facts, const HostModel& host) const {
  const auto* const photoshop = dynamic_cast<const PhotoshopHostModel*>(&host);
  if (photoshop == nullptr) return;
  std::set<std::string> folders = {"/Library/Application Support/Adobe/Plug-Ins/CC", facts.folder};
  for (const WalkedItem& item : platform_.files.visibleEntries(photoshop->appPath())) {
    const std::string name = lastPathComponent(item.path);
    if (equalIgnoringCase(name, "Plug-ins")) folders.insert(item.path);
    if (equalIgnoringCase(name, "Required")) folders.insert(joinPath(item.path, "Plug-ins"));
  }
  const std::string part = Payload(platform_).folder("PHOTOSHOP_PLUGINS");
  const auto visit = [&](const WalkedItem& item) {
    if (!item.isPackage) return;
    const std::string name = lastPathComponent(item.path);
    const auto offered =
        std::ranges::find(plugIns_, name, [](const OfferedPlugIn& plugIn) { return lastPathComponent(plugIn.path); });
    if (offered == plugIns_.end()) return;
    const auto bundle = platform_.bundles.bundleAtPath(item.path);
    const std::string version = bundle == nullptr ? "" : versionOf(*bundle);
    const bool isOwnPlace = item.path == replacingOccurrences(offered->path, part, facts.folder);
    if (isOwnPlace || !isOlder(version, offered->version)) return;
    facts.problems.push_back(
        {.kind = LoadingProblem::Kind::olderCopy, .plugIn = name, .detail = version, .path = item.path});
  };
  for (const std::string& folder : folders) {
    if (platform_.files.exists(folder)) platform_.files.walk(folder, visit);
  }
}

namespace {

std::string textOf(const LoadingProblem& problem, const ToolTexts& texts) {
  switch (problem.kind) {
    case LoadingProblem::Kind::architecture:
      return formatted(texts("tool_host_architecture", "%1$@ is not for %2$@, in which this application may run"),
                       problem.plugIn, problem.detail);
    case LoadingProblem::Kind::hostVersion:
      return formatted(texts("tool_host_version", "%1$@ needs version %2$@ of this application"), problem.plugIn,
                       problem.detail);
    case LoadingProblem::Kind::olderCopy: break;
  }
  return formatted(texts("tool_host_older", "version %1$@ may be loaded instead: %2$@"), problem.detail, problem.path);
}

}  // namespace

void writeHosts(const std::vector<HostFacts>& hosts, const ToolTexts& texts, std::ostream& output) {
  const auto line = [&](const std::string& text) { output << onOneLine(text) << '\n'; };
  line(formatted(texts("quiet_hosts", "Hosts found: %@"), std::to_string(hosts.size())));
  for (const HostFacts& host : hosts) {
    std::string heading = "  " + host.name;
    if (!host.version.empty()) heading += "  " + host.version;
    for (const std::string& architecture : host.architectures) heading += "  " + architecture;
    line(heading);
    if (!host.folder.empty()) line("    " + host.folder);
    if (host.canLoad) {
      line("    " + (*host.canLoad ? texts("tool_host_loads", "can load the plug-ins")
                                   : texts("tool_host_refuses", "cannot load all plug-ins")));
    }
    for (const LoadingProblem& problem : host.problems) line("    " + textOf(problem, texts));
  }
}

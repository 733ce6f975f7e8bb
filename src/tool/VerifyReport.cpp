// SPDX-License-Identifier: Apache-2.0

#include "tool/VerifyReport.h"

#include <ostream>

#include "foundation/Format.h"
#include "foundation/Text.h"
#include "hosts/HostsModel.h"
#include "install/InstallPlanner.h"
#include "tool/InstalledPlaces.h"
#include "tool/LoggedPaths.h"

VerifyReport verifyInstall(Platform& platform, bool isOnlyLogged) {
  VerifyReport report;
  const auto isMissing = [&](const std::string& path) {
    if (platform.files.isTaken(path)) return;
    report.differences.push_back({.kind = ItemDifference::Kind::missing, .path = path});
  };
  const LoggedPaths log(platform);
  InstalledPlaces places(platform);
  if (!isOnlyLogged) {
    places.add(InstallPlanner(platform, {.hasPage = false}).plan(HostsModel(platform).foundHosts()));
  }
  for (const LoggedPath& logged : log.paths()) {
    if (logged.item && places.itemAt(logged.path) == nullptr) places.add(*logged.item);
  }
  for (const std::string& place : places.places()) {
    const Status compared = places.compare(place, [&](const ItemDifference& difference) {
      report.differences.push_back(difference);
      return !platform.interruptions.requested();
    });
    if (!compared) report.errors.push_back(compared.error());
    if (platform.interruptions.requested()) return report;
  }
  for (const LoggedPath& logged : log.paths()) {
    if (!logged.item) isMissing(logged.path);
  }
  if (log.problem()) isMissing(log.logPath());
  report.places = places.places().size();
  report.logged = log.paths().size();
  return report;
}

namespace {

std::string textOf(const ItemDifference& difference, const ToolTexts& texts) {
  using Kind = ItemDifference::Kind;
  const auto& [kind, path, expected, found] = difference;
  switch (kind) {
    case Kind::missing: return texts("tool_missing", "is missing");
    case Kind::extra: return texts("tool_extra", "is not part of the product");
    case Kind::type: return texts("tool_type", "is something else than it should be");
    case Kind::link: return texts("tool_link", "is not the link that it should be");
    case Kind::content: return texts("tool_content", "has other content");
    case Kind::unreadable: return texts("tool_unreadable", "cannot be read");
    case Kind::attributes: return formatted(texts("tool_attributes", "attribute %@ differs"), expected);
    case Kind::size: return formatted(texts("tool_size", "has %1$@ bytes instead of %2$@"), found, expected);
    case Kind::mode: return formatted(texts("tool_mode", "has mode %1$@ instead of %2$@"), found, expected);
    case Kind::owner: return formatted(texts("tool_owner", "belongs to %1$@ instead of %2$@"), found, expected);
  }
  return {};
}

}  // namespace

void writeVerify(const VerifyReport& report, const std::string& volume, const ToolTexts& texts, std::ostream& output) {
  const auto line = [&](const std::string& text) { output << onOneLine(text) << '\n'; };
  line(formatted(texts("tool_verify_title", "%1$@ on %2$@: %3$@ places compared, %4$@ paths in the log"),
                 texts.product(), volume, std::to_string(report.places), std::to_string(report.logged)));
  for (const ItemDifference& difference : report.differences) {
    line("  " + difference.path + ": " + textOf(difference, texts));
  }
  for (const Error& error : report.errors) line("  " + error.description());
  line(formatted(texts("tool_differences", "Differences: %@"), std::to_string(report.differences.size())));
}

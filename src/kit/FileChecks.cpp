// SPDX-License-Identifier: Apache-2.0

// Names, modes, links and marks of all that is in the bundle.
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/Path.h"
#include "foundation/Text.h"
#include "kit/Checks.h"
#include "kit/FileNames.h"
#include "payload/InstallerTexts.h"

namespace {

constexpr const char* programFolder = "Contents/MacOS";
constexpr const char* helperFolder = "Contents/Helpers";

bool canBeNamed(std::string_view name) {
  constexpr std::string_view iconOfFolder = "Icon\r";
  return name == iconOfFolder || (isValidUtf8(name) && name.find_first_of(":\n\r\t") == std::string_view::npos);
}

void checkName(const TreeItem& item, std::map<std::string, std::string>& known, Findings& findings) {
  const std::string name = lastPathComponent(item.path);
  const Place place{.file = item.path};
  if (!canBeNamed(name)) return findings.add("files.name", place);
  if (composedName(name) != name) findings.add("files.not-composed", place, {composedName(name)});
  const std::string onVolume = joinPath(deletingLastPathComponent(item.path), nameOnVolume(name));
  const auto [other, isNew] = known.emplace(onVolume, name);
  if (!isNew) findings.add("files.collision", place, {other->second});
}

void checkMode(const TreeItem& item, Findings& findings) {
  constexpr std::uint32_t readable = 0444;
  constexpr std::uint32_t searchable = 0555;
  constexpr std::uint32_t changeableByAll = 0002;
  constexpr std::uint32_t otherIdentity = 06000;
  if (item.type != ItemType::regularFile && item.type != ItemType::folder) return;
  const Place place{.file = item.path};
  const std::uint32_t wanted = item.type == ItemType::folder ? searchable : readable;
  if ((item.permissions & wanted) != wanted) findings.add("files.mode", place);
  if ((item.permissions & changeableByAll) != 0) findings.add("files.changeable", place);
  if (item.type == ItemType::regularFile && (item.permissions & otherIdentity) != 0)
    findings.add("files.set-id", place);
  const std::string folder = deletingLastPathComponent(item.path);
  constexpr std::uint32_t startable = 0111;
  const bool isProgram = folder == programFolder || folder == helperFolder;
  if (isProgram && (item.permissions & startable) != startable) findings.add("files.not-startable", place);
}

/// The package or product folder of the payload that holds the item; empty when none does.
std::string outermostHolder(const InspectedBundle& bundle, const std::string& path) {
  std::string holder;
  const std::string makers =
      joinPath({bundle.payloadFolder(), "HD/Library/Application Support", companyName(bundle.platform())});
  for (std::string at = deletingLastPathComponent(path); at.size() > bundle.payloadFolder().size();
       at = deletingLastPathComponent(at)) {
    const TreeItem* const item = bundle.item(at);
    if ((item != nullptr && item->isPackage) || deletingLastPathComponent(at) == makers) holder = at;
  }
  return holder;
}

/// Where a link leads, with ".." worked out by the names alone; nothing for a place outside the bundle.
std::optional<std::string> destination(const TreeItem& link) {
  if (link.link.starts_with('/')) return std::nullopt;
  std::vector<std::string_view> parts = split(link.path, '/');
  parts.pop_back();
  for (const std::string_view part : split(link.link, '/')) {
    if (part.empty() || part == ".") continue;
    if (part != "..") {
      parts.push_back(part);
    } else if (parts.empty()) {
      return std::nullopt;
    } else {
      parts.pop_back();
    }
  }
  std::string path;
  for (const std::string_view part : parts) path = joinPath(path, part);
  return path;
}

void checkLink(const InspectedBundle& bundle, const TreeItem& item, Findings& findings) {
  if (item.type != ItemType::symbolicLink) return;
  const bool isPayload = isAtOrBelow(item.path, bundle.payloadFolder());
  const std::string holder = isPayload ? outermostHolder(bundle, item.path) : "";
  const Place place{.file = item.path};
  if (isPayload && holder.empty()) return;  // it is not installed
  const auto leadsTo = destination(item);
  if (!leadsTo || (isPayload && !isAtOrBelow(*leadsTo, holder))) {
    findings.add("files.link-out", place, {item.link});
  } else if (!bundle.platform().files.exists(bundle.fullPath(item.path))) {
    findings.add("files.link-dangling", place, {item.link});
  }
}

}  // namespace

void checkFiles(const InspectedBundle& bundle, Findings& findings) {
  std::map<std::string, std::string> known;
  std::size_t quarantined = 0;
  std::string firstQuarantined;
  for (const TreeItem& item : bundle.items()) {
    checkName(item, known, findings);
    checkMode(item, findings);
    checkLink(bundle, item, findings);
    if (item.isQuarantined && quarantined++ == 0) firstQuarantined = item.path;
  }
  if (quarantined > 0) findings.add("files.quarantine", {.file = firstQuarantined}, {std::to_string(quarantined)});
  const std::string program = joinPath(programFolder, "Installer");
  if (bundle.item(program) == nullptr) findings.add("files.no-program", {.file = program});
}

// SPDX-License-Identifier: Apache-2.0

#include "kit/InspectedBundle.h"

#include <algorithm>
#include <utility>

#include "foundation/Path.h"
#include "foundation/Text.h"
#include "platform/propertylist/PropertyList.h"

namespace {

constexpr std::size_t largestInspectedFile = std::size_t{1} << 30U;

}  // namespace

InspectedBundle::InspectedBundle(Platform& platform)
    : platform_(platform),
      items_(platform.files.everythingBelow(platform.bundles.mainBundle().bundlePath()).valueOr({})),
      payloadFolder_(ownPayloadFolder) {
  settings_ = table(std::string(settingsTable));
  const std::string& beside = setting("payload");
  if (!beside.empty()) payloadFolder_ = joinPath("..", beside);
  if (!beside.empty() && hasPayloadFolder()) {
    for (TreeItem& item : platform.files.everythingBelow(fullPath(payloadFolder_)).valueOr({})) {
      item.path = joinPath(payloadFolder_, item.path);
      items_.push_back(std::move(item));
    }
  }
  for (const TreeItem& item : items_) byPath_[item.path] = &item;
  findLanguages();
}

bool InspectedBundle::hasPayloadFolder() const {
  const std::string& beside = setting("payload");
  const bool isName = beside.find('/') == std::string::npos && beside != "." && beside != "..";
  return isName && platform_.files.exists(fullPath(payloadFolder_));
}

void InspectedBundle::findLanguages() {
  const std::string offered = setting("languages");
  const auto words = split(offered, ' ');
  for (const TreeItem& item : items_) {
    const bool isResource = deletingLastPathComponent(item.path) == resourcesFolder;
    if (!isResource || item.type != ItemType::folder || pathExtension(item.path) != "lproj") continue;
    std::string language = lastPathComponent(item.path);
    language.resize(language.rfind('.'));
    const bool isOffered = trimmed(offered).empty() || std::ranges::find(words, language) != words.end();
    if (language != "Base" && (isOffered || language == "en")) languages_.push_back(std::move(language));
  }
}

bool InspectedBundle::hasLanguage(std::string_view language) const {
  return std::ranges::find(languages_, language) != languages_.end();
}

const TreeItem* InspectedBundle::item(const std::string& path) const {
  const auto found = byPath_.find(path);
  return found == byPath_.end() ? nullptr : found->second;
}

std::string InspectedBundle::fullPath(std::string_view path) const {
  return joinPath(platform_.bundles.mainBundle().bundlePath(), path);
}

std::string InspectedBundle::relativePath(const std::string& fullPath) const {
  const std::string bundle = platform_.bundles.mainBundle().bundlePath() + "/";
  return fullPath.starts_with(bundle) ? fullPath.substr(bundle.size()) : fullPath;
}

std::optional<std::string> InspectedBundle::read(const std::string& path) const {
  if (platform_.interruptions.requested()) return std::nullopt;
  auto bytes = platform_.files.readFile(fullPath(path), largestInspectedFile);
  if (!bytes) return std::nullopt;
  return std::move(*bytes);
}

bool InspectedBundle::hasWholeSettings() const {
  return item(std::string(settingsTable)) != nullptr && settings_.problem.empty();
}

StringsTable InspectedBundle::table(const std::string& path) const {
  const auto bytes = read(path);
  if (!bytes) return {};
  if (!bytes->starts_with("bplist") && !bytes->starts_with("<?xml")) return parseStringsTable(*bytes);
  const auto list = readPropertyList(*bytes);
  StringsTable table;
  if (!list) table.problem = list.error().reason();
  const auto* const entries = list ? list->as<Value::Dictionary>() : nullptr;
  if (entries == nullptr) return table;
  for (const auto& [key, text] : *entries) table.texts.emplace(key, text.text());
  return table;
}

std::string InspectedBundle::fallbackLanguage() const {
  const std::string& offered = setting("languages");
  const auto words = split(offered, ' ');
  if (std::ranges::find(words, "en") != words.end()) return "en";
  const auto first = std::ranges::find_if_not(words, &std::string_view::empty);
  return first == words.end() ? "en" : std::string(*first);
}

std::string InspectedBundle::localized(std::string_view language, std::string_view file) {
  return joinPath({resourcesFolder, std::string(language) + ".lproj", file});
}

const std::string& InspectedBundle::setting(std::string_view key) const {
  static const std::string missing;
  const auto found = settings_.texts.find(key);
  return found == settings_.texts.end() ? missing : found->second;
}

Value InspectedBundle::info(const std::string& bundle) const {
  for (const char* const place : {"Contents/Info.plist", "Resources/Info.plist", "Info.plist"}) {
    const auto bytes = read(joinPath(bundle, place));
    if (!bytes) continue;
    return readPropertyList(*bytes).valueOr({});
  }
  return {};
}

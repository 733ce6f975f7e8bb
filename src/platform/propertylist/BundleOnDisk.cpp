// SPDX-License-Identifier: Apache-2.0

#include "platform/propertylist/BundleOnDisk.h"

#include <utility>

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "platform/propertylist/PropertyList.h"

namespace {

constexpr std::size_t maxBundleFile = std::size_t{16} << 20U;

}  // namespace

BundleOnDisk::BundleOnDisk(std::string path, const FileSystem& files, const User& user, Log& log)
    : path_(std::move(path)), files_(files), user_(user), log_(log) {}

std::string BundleOnDisk::resourcePath() const { return joinPath(path_, "Contents/Resources"); }
std::string BundleOnDisk::sharedSupportPath() const { return joinPath(path_, "Contents/SharedSupport"); }

Value BundleOnDisk::infoValue(std::string_view key) const {
  if (!info_) info_ = readInfo();
  return entryOf(*info_, key);
}

Value BundleOnDisk::readInfo() const {
  // An application or plug-in, a framework, and a bundle of the old flat form.
  for (const char* const place : {"Contents/Info.plist", "Resources/Info.plist", "Info.plist"}) {
    const std::string path = joinPath(path_, place);
    const auto bytes = files_.readFile(path, maxBundleFile);
    if (!bytes) continue;
    auto value = readPropertyList(*bytes);
    if (value) return std::move(*value);
    log_.write(formatted("Could not read %@: %@", path, value.error().description()));
    return {};
  }
  return {};
}

std::string BundleOnDisk::localizedString(std::string_view key, std::string_view fallback,
                                          std::string_view table) const {
  const Texts& texts = textsOfTable(table);
  const auto found = texts.find(key);
  return found != texts.end() ? found->second : std::string(fallback);
}

const BundleOnDisk::Texts& BundleOnDisk::textsOfTable(std::string_view table) const {
  const auto known = tables_.find(table);
  if (known != tables_.end()) return known->second;
  return tables_.emplace(table, readTable(table)).first->second;
}

std::vector<std::string> BundleOnDisk::languagesFor(std::string_view /*name*/) const {
  return user_.preferredLanguages();
}

std::vector<std::string> BundleOnDisk::pathsOfResource(std::string_view name, std::string_view type) const {
  std::vector<std::string> folders;
  for (const std::string& language : languagesFor(name)) folders.push_back(language + ".lproj");
  folders.emplace_back("en.lproj");
  folders.emplace_back("Base.lproj");
  folders.emplace_back("");  // for all languages
  for (std::string& folder : folders) {
    folder = joinPath({resourcePath(), folder, std::string(name) + "." + std::string(type)});
  }
  return folders;
}

std::optional<std::string> BundleOnDisk::pathForResource(std::string_view name, std::string_view type) const {
  for (const std::string& path : pathsOfResource(name, type)) {
    if (files_.exists(path)) return path;
  }
  return std::nullopt;
}

BundleOnDisk::Texts BundleOnDisk::readTable(std::string_view table) const {
  for (const std::string& path : pathsOfResource(table, "strings")) {
    if (auto texts = readTableFile(path)) return *texts;
  }
  log_.write(formatted("No strings table %@ in %@", table, path_));
  return {};
}

std::optional<BundleOnDisk::Texts> BundleOnDisk::readTableFile(const std::string& path) const {
  const auto bytes = files_.readFile(path, maxBundleFile);
  if (!bytes) return std::nullopt;
  // Tables that a build has compiled are property lists.
  if (bytes->starts_with("bplist") || bytes->starts_with("<?xml")) {
    const auto value = readPropertyList(*bytes);
    if (!value) log_.write(formatted("Strings table %@: %@", path, value.error().description()));
    Texts texts;
    const auto* entries = value ? value->as<Value::Dictionary>() : nullptr;
    if (entries != nullptr) {
      for (const auto& [key, text] : *entries) texts.emplace(key, text.text());
    }
    return texts;
  }
  StringsTable table = parseStringsTable(*bytes);
  if (!table.problem.empty()) log_.write(formatted("Strings table %@: %@", path, table.problem));
  return std::move(table.texts);
}

bool isFileName(const std::string& name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos;
}

std::string iconFileOf(const std::string& path, const Bundles& bundles, const FileSystem& files) {
  const auto bundle = bundles.bundleAtPath(path);
  if (bundle == nullptr) return {};
  const std::string name = bundle->infoValue("CFBundleIconFile").text();
  if (!isFileName(name)) return {};
  for (const std::string& candidate : {name, name + ".icns"}) {
    std::string icon = joinPath({path, "Contents/Resources", candidate});
    if (files.exists(icon) && !files.contentsOfDirectory(icon)) return icon;
  }
  return {};
}

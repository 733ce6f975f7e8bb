// SPDX-License-Identifier: Apache-2.0

#include "hosts/PhotoshopHostModel.h"

#include <algorithm>
#include <chrono>

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "foundation/Text.h"
#include "hosts/PathsFile.h"
#include "hosts/UserDirectories.h"

namespace {

constexpr std::string_view creativeCloudPlugIns = "/Library/Application Support/Adobe/Plug-Ins/CC/";
constexpr std::uint32_t plainCreativeCloudVersion = 7;  // the one after CS6
constexpr std::uint32_t firstVersionInFixedPlaces = 2019;
constexpr std::size_t shortestPathsFile = 8;
// A Paths file holds two paths, which the system limits to a kilobyte each; what comes after them does not count.
constexpr std::size_t mostOfPathsFileRead = std::size_t{1} << 20U;

std::uint32_t unsignedIntegerValue(std::string_view text) { return static_cast<std::uint32_t>(integerValue(text)); }

/// The text from `offset` characters after the start of the first occurrence of `marker`; nothing when there is no
/// marker or no such text.
std::optional<std::string_view> textAfter(std::string_view name, std::string_view marker, std::size_t offset) {
  const std::size_t found = name.find(marker);
  return found == std::string_view::npos ? std::nullopt : withoutFirstCharacters(name.substr(found), offset);
}

std::uint32_t firstPieceAsInteger(std::string_view text) {
  return unsignedIntegerValue(split(trimmed(text), ' ').front());
}

}  // namespace

std::shared_ptr<PhotoshopHostModel> PhotoshopHostModel::initWithHostName(Platform& platform, std::string name) {
  auto model = std::shared_ptr<PhotoshopHostModel>(new PhotoshopHostModel(platform, std::move(name)));
  if (model->version() >= firstVersionInFixedPlaces) {
    model->appPath_ = "/Applications/" + model->hostName_;
    model->plugInPath_ = creativeCloudPlugIns;
    model->scriptsPath_ = joinPath(*model->appPath_, "Presets/Scripts");
    model->panelsPath_ = joinPath(model->plugInPath_, "Panels");
    model->hostIsInstalled_ = model->appFolderHoldsApplication();
  } else {
    model->initPathsFromHostName(model->hostName_);
  }
  return model;
}

std::shared_ptr<PhotoshopHostModel> PhotoshopHostModel::initWithPathsFilePath(Platform& platform,
                                                                              const std::string& path) {
  std::string name = replacingOccurrences(lastPathComponent(path), " Paths", "");
  auto model = std::shared_ptr<PhotoshopHostModel>(new PhotoshopHostModel(platform, std::move(name)));
  model->initPathsFromPathFile(path);
  return model;
}

void PhotoshopHostModel::initPathsFromHostName(const std::string& name) {
  initPathsFromPathFile(joinPath(NSUserPreferencesDirectory(platform_).value_or(""), name + " Paths"));
}

void PhotoshopHostModel::initPathsFromPathFile(const std::string& path) {
  hostIsInstalled_ = false;
  const auto data = readPathsFile(path);
  if (!data) return;
  if (data->size() < shortestPathsFile) {
    platform_.log.write(formatted("Could not parse paths file: too short: %@", path));
    return;
  }
  takeFolders(parsePathsFile(*data));
  if (appPath_ && !plugInPath_.empty()) hostIsInstalled_ = appFolderHoldsApplication();
}

std::optional<std::string> PhotoshopHostModel::readPathsFile(const std::string& path) const {
  constexpr int furtherTries = 3;
  for (int tried = 0;; ++tried) {
    Result<std::string> data = platform_.files.readFile(path, mostOfPathsFileRead);
    if (data) return std::move(*data);
    if (tried == furtherTries) return std::nullopt;
    platform_.log.write(formatted("Could not open paths file: %@", data.error().description()));
    platform_.clock.sleepFor(std::chrono::microseconds(500000));
  }
}

void PhotoshopHostModel::takeFolders(const PathsFile& file) {
  appPath_ = file.appFolder;
  const std::uint32_t major = version();
  if (major >= 2016 || (major == 2015 && minorVersion() >= 5)) {
    plugInPath_ = creativeCloudPlugIns;
  } else if (file.namesPlugInsFolder) {
    plugInPath_ = file.plugInsFolder.value_or("");
  } else if (appPath_) {
    plugInPath_ = joinPath(*appPath_, "Plug-Ins");
  }
  if (appPath_) scriptsPath_ = joinPath(*appPath_, "Presets/Scripts");
  if (!plugInPath_.empty()) panelsPath_ = joinPath(plugInPath_, "Panels");
}

bool PhotoshopHostModel::appFolderHoldsApplication() const {
  const auto names = platform_.files.contentsOfDirectory(*appPath_).valueOr({});
  return std::ranges::any_of(names, [](const std::string& name) { return name.ends_with(".app"); });
}

std::uint32_t PhotoshopHostModel::version() const {
  const std::string_view name = hostName_;
  if (isElements()) return firstPieceAsInteger(textAfter(name, " Elements", 9).value_or(""));
  if (name.find(" CS") != std::string_view::npos) return unsignedIntegerValue(textAfter(name, " CS", 3).value_or(""));
  if (name.find(" CC") != std::string_view::npos) {
    const auto year = textAfter(name, " CC", 4);
    const auto rest = year ? withoutFirstCharacters(*year, 4) : std::nullopt;
    if (!rest) return plainCreativeCloudVersion;
    return firstPieceAsInteger(year->substr(0, year->size() - rest->size()));
  }
  return 0;
}

std::uint32_t PhotoshopHostModel::minorVersion() const {
  const auto rest = textAfter(hostName_, " CC", 4);
  if (!rest) return 0;
  const std::size_t stop = rest->find('.');
  return stop == std::string_view::npos ? 0 : unsignedIntegerValue(rest->substr(stop + 1));
}

std::uint32_t PhotoshopHostModel::photoshopVersionFromDisplayName() const { return isElements() ? 0 : version(); }

bool PhotoshopHostModel::isElements() const { return hostName_.find(" Elements") != std::string::npos; }

bool PhotoshopHostModel::shouldInstallScripts() const {
  return hostName_.find(" CS2") == std::string::npos && hostName_.find("Elements") == std::string::npos;
}

bool PhotoshopHostModel::shouldInstallPanels() const { return hostIsAtLeastVersionCS(4); }

std::uint64_t PhotoshopHostModel::displaySortOrder() const {
  const std::uint32_t base = isElements() ? 3000 : 1000;
  return static_cast<std::uint32_t>(base - version());
}

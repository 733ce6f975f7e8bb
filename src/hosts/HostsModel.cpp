// SPDX-License-Identifier: Apache-2.0

#include "hosts/HostsModel.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <utility>
#include <vector>

#include "foundation/Exception.h"
#include "foundation/Format.h"
#include "foundation/Path.h"
#include "foundation/Predicate.h"
#include "foundation/Text.h"
#include "hosts/ApertureHostModel.h"
#include "hosts/LightRoomHostModel.h"
#include "hosts/PhotoshopHostModel.h"
#include "hosts/UnknownHostModel.h"
#include "hosts/UserDirectories.h"
#include "payload/Configuration.h"
#include "payload/InstallerTexts.h"
#include "settings/BundleUserDefaults.h"

namespace {

constexpr std::uint32_t oldestVersionListed = 6;
constexpr std::uint32_t firstVersionFoundBySettings = 2019;

/// The entries of the folder whose names fulfil the predicate, as full paths in the order of the file system's listing,
/// which decides between two of the same version; none for a missing folder.
std::vector<std::string> matchingEntries(const Platform& platform, const std::string& folder,
                                         std::string_view predicateText) {
  std::vector<std::string> paths;
  if (folder.empty()) return paths;
  const Predicate predicate = Predicate::parse(predicateText);
  for (const std::string& name : platform.files.listing(folder).valueOr({})) {
    // What a Mac left beside a file on a foreign file system is no entry to a Mac.
    if (!name.starts_with("._") && predicate.evaluate(Value(name))) paths.push_back(joinPath(folder, name));
  }
  return paths;
}

}  // namespace

HostsModel::HostsModel(Platform& platform) : platform_(platform) {
  readRememberedCustomFolder();
  loadTexts();
  findHosts();
}

void HostsModel::readRememberedCustomFolder() {
  // Neither model goes into the list, so that no folder is chosen before the user opens the custom screen, which reads
  // the same setting.
  const auto settings =
      BundleUserDefaults::initWithPersistentDomainName(platform_, installerPreferencesDomain(platform_));
  std::shared_ptr<UnknownHostModel> remembered;
  if (const Value path = settings.objectForKey("customPath"); !path.isNone()) {
    remembered = UnknownHostModel::initWithPlugInPath(platform_, path.text());
  } else if (!settings.objectForKey("customPath64").isNone()) {
    remembered = UnknownHostModel::initWithPlugInPath(platform_, "");
  }
}

void HostsModel::loadTexts() {
  const Bundle& bundle = platform_.bundles.mainBundle();
  const std::string product = shownProductName(platform_);
  mainLabelText_ = bundle.localizedString("select_host");
  stepIndicatorLabelText_ = bundle.localizedString("host_selection");
  informativeText_ = formatted(bundle.localizedString("select_host_instructions"), product, product);
  customInstallBrowseButtonText_ = bundle.localizedString("custom_install_browse_button");
  customInstallPathLabelText_ = bundle.localizedString("custom_install_label_path");
  customInstallButtonText_ = bundle.localizedString("custom_install_button");
  customInstallCheckBoxText_ = bundle.localizedString("custom_install_panels_checkbox");
  customInstallHostsExplanationText_ = bundle.localizedString("custom_install_host_label");
}

void HostsModel::findHosts() {
  const Configuration configuration(platform_);
  if (configuration.offersHost("photoshop")) findPhotoshops();
  if (configuration.offersHost("lightroom")) {
    hostsArray_.push_back(LightRoomHostModel::initWithHostName(platform_, "Adobe Lightroom"));
  }
  if (configuration.offersHost("aperture")) {
    hostsArray_.push_back(ApertureHostModel::initWithHostName(platform_, "Aperture"));
  }
}

void HostsModel::findPhotoshops() {
  const std::string preferences = NSUserPreferencesDirectory(platform_).value_or("");
  const auto support = ApplicationSupportDirectory(platform_);
  const std::string adobe = support ? joinPath(*support, "Adobe") : "";

  constexpr std::string_view isPathsFile = "SELF contains 'Paths' AND SELF contains 'Adobe'";
  std::vector<std::string> candidates = matchingEntries(platform_, adobe, isPathsFile);
  for (std::string& path : matchingEntries(platform_, preferences, isPathsFile)) candidates.push_back(std::move(path));

  std::set<std::uint32_t> versionsSeen;
  for (const std::string& path : candidates) {
    platform_.log.write(formatted("Found path file %@", path));
    auto host = PhotoshopHostModel::initWithPathsFilePath(platform_, path);
    if (host->isElements()) {
      // No version of Elements is listed; whether it is a recent one was once of interest and is still asked.
      static_cast<void>(host->hostIsAtLeastVersionElements(9));
    } else if (host->hostIsAtLeastVersionCS(oldestVersionListed)) {
      versionsSeen.insert(host->photoshopVersionFromDisplayName());
      hostsArray_.push_back(std::move(host));
    }
  }

  for (const std::string& path :
       matchingEntries(platform_, preferences, "SELF contains 'Settings' AND SELF contains 'Adobe'")) {
    auto host =
        PhotoshopHostModel::initWithHostName(platform_, replacingOccurrences(lastPathComponent(path), " Settings", ""));
    const std::uint32_t version = host->photoshopVersionFromDisplayName();
    if (version >= firstVersionFoundBySettings && versionsSeen.insert(version).second) {
      hostsArray_.push_back(std::move(host));
    }
  }
}

HostList HostsModel::foundHosts() const {
  HostList hosts = filteredHosts(hostsArray_, "hostIsInstalled == YES");
  try {
    std::ranges::stable_sort(hosts, {}, [](const std::shared_ptr<HostModel>& host) {
      return *host->valueForKey("displaySortOrder").as<std::int64_t>();
    });
  } catch (const UnknownKey&) {
    return {};  // a kind that has no place in the list
  }
  return hosts;
}

HostList HostsModel::scriptsOrPanelsHosts() const {
  const Predicate wanted = Predicate::parse("(shouldInstallScripts == YES) OR (shouldInstallPanels == YES)");
  static_cast<void>(wanted);
  // Not the predicate above: this one names keys that no host has, and leaves none.
  return filteredHosts(foundHosts(), "(hostname == bogus)");
}

void HostsModel::addHostAtRuntime(std::shared_ptr<HostModel> host) { hostsArray_.push_back(std::move(host)); }

void HostsModel::removeHostAtRuntime(const std::shared_ptr<HostModel>& host) { std::erase(hostsArray_, host); }

HostList filteredHosts(const HostList& hosts, std::string_view predicate) {
  HostList kept;
  try {
    const Predicate test = Predicate::parse(predicate);
    for (const auto& host : hosts) {
      if (test.evaluate(*host)) kept.push_back(host);
    }
  } catch (const Exception&) {
    return {};
  }
  return kept;
}

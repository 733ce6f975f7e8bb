// SPDX-License-Identifier: Apache-2.0

#include "payload/InstallerTexts.h"

#include <string_view>

#include "foundation/Text.h"

namespace {

std::string installerText(const Platform& platform, const char* key) {
  return platform.bundles.mainBundle().localizedString(key, "", "installer");
}

/// A name that leads elsewhere counts as missing: installing and removing by it would affect other makers' files.
bool isUsable(const std::string& name) { return name != "." && name != ".." && name.find('/') == std::string::npos; }

}  // namespace

std::string companyName(const Platform& platform) {
  const std::string name = shownCompanyName(platform);
  return isUsable(name) ? name : "";
}
std::string productName(const Platform& platform) {
  const std::string name = replacingOccurrences(shownProductName(platform), "/", ":");
  return isUsable(name) ? name : "";
}
std::string productPreferencesDomain(const Platform& platform) { return installerText(platform, "app_plist"); }

std::string installerPreferencesDomain(const Platform& platform) {
  const std::string configured = installerText(platform, "installer_identifier");
  return configured.empty() ? "com.corvane.installer" : configured;
}

std::string shownCompanyName(const Platform& platform) { return installerText(platform, "company_name"); }
std::string shownProductName(const Platform& platform) { return installerText(platform, "product_name"); }

std::string shownInText(const Platform& platform, const std::string& path) {
  constexpr std::string_view fromTheLeft = "\u2066";
  constexpr std::string_view end = "\u2069";
  const bool isMirrored = platform.bundles.mainBundle().localizedString("layout_direction") == "rightToLeft";
  return isMirrored && !path.empty() ? std::string(fromTheLeft) + path + std::string(end) : path;
}

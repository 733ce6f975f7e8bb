#include "install/paths/InstallerTexts.h"

namespace {

std::string installerText(const Platform& platform, const char* key) {
  return platform.bundles.mainBundle().localizedString(key, "", "installer");
}

}  // namespace

std::string companyName(const Platform& platform) { return installerText(platform, "company_name"); }
std::string productName(const Platform& platform) { return installerText(platform, "product_name"); }
std::string productPreferencesDomain(const Platform& platform) { return installerText(platform, "app_plist"); }

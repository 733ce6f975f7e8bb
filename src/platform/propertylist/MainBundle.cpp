// SPDX-License-Identifier: Apache-2.0

#include "platform/propertylist/MainBundle.h"

#include <algorithm>
#include <array>
#include <utility>

#include "foundation/Text.h"

namespace {

constexpr std::string_view configurationTable = "installer";

/// Values of the info dictionary, and the keys of the configuration that give them.
constexpr std::array<std::pair<std::string_view, std::string_view>, 4> infoKeys = {
    {{"CFBundleIdentifier", "installer_identifier"},
     {"CFBundleShortVersionString", "product_version"},
     {"CFBundleVersion", "product_version"},
     {"NSHumanReadableCopyright", "copyright"}}};

}  // namespace

std::string MainBundle::configured(std::string_view key) const { return localizedString(key, "", configurationTable); }

Value MainBundle::infoValue(std::string_view key) const {
  const auto* const given = std::ranges::find(infoKeys, key, &std::pair<std::string_view, std::string_view>::first);
  if (given != infoKeys.end()) {
    if (std::string text = configured(given->second); !text.empty()) return Value(std::move(text));
  }
  Value value = BundleOnDisk::infoValue(key);
  if (key != "CFBundleName" || !value.isNone()) return value;
  const std::string product = configured("product_name");
  return product.empty() ? value : Value(product + " Installer");
}

std::string MainBundle::localizedString(std::string_view key, std::string_view fallback, std::string_view table) const {
  std::string text = BundleOnDisk::localizedString(key, fallback, table);
  const bool isName = table == configurationTable && key.ends_with("_name");
  return isName ? text : withNames(std::move(text));
}

std::vector<std::string> MainBundle::languagesFor(std::string_view table) const {
  std::vector<std::string> languages = BundleOnDisk::languagesFor(table);
  // The list is in this table. Whose language is not offered gets the first that is.
  const std::string list = table == configurationTable ? "" : configured("languages");
  std::vector<std::string> offered;
  for (const std::string_view word : split(list, ' ')) {
    if (!word.empty()) offered.emplace_back(word);
  }
  if (offered.empty()) return languages;
  std::erase_if(languages,
                [&](const std::string& language) { return std::ranges::find(offered, language) == offered.end(); });
  const bool isEnglishOffered = std::ranges::find(offered, "en") != offered.end();
  if (!isEnglishOffered) languages.push_back(offered.front());
  return languages;
}

BundleOnDisk::Texts MainBundle::readTable(std::string_view table) const {
  if (table != configurationTable) return BundleOnDisk::readTable(table);
  Texts texts;
  for (const std::string& path : pathsOfResource(table, "strings")) {
    if (auto more = readTableFile(path)) texts.merge(*more);
  }
  return texts.empty() ? BundleOnDisk::readTable(table) : texts;
}

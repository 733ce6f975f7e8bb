// SPDX-License-Identifier: Apache-2.0

// What the product and the installer are called.
#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "foundation/Path.h"
#include "foundation/Text.h"
#include "kit/Checks.h"
#include "kit/Reference.h"
#include "payload/Configuration.h"
#include "platform/propertylist/PropertyList.h"

namespace {

constexpr const char* ownInfo = "Contents/Info.plist";

bool isForFiles(std::string_view name) {
  return name != "." && name != ".." && name.find('/') == std::string_view::npos;
}

/// The keys of a table, which may be that of one language.
void checkKeys(const InspectedBundle& bundle, const std::string& file, Findings& findings) {
  for (const auto& [key, text] : bundle.table(file).texts) {
    const bool isKnown = std::ranges::find(configurationKeys, key, &ConfigurationKey::name) != configurationKeys.end();
    if (!isKnown) findings.add("product.unknown-key", {.file = file, .key = key}, {key});
    const bool isForAll = key == "company_name" || key == "product_name" || key == "languages";
    if (isKnown && isForAll && text != bundle.setting(key)) {
      findings.add("product.translated-name", {.file = file, .key = key}, {key});
    }
  }
}

void checkNames(const InspectedBundle& bundle, Findings& findings) {
  for (const char* const key : {"company_name", "product_name", "app_plist"}) {
    if (bundle.setting(key).empty()) findings.add("product.missing", inSettings(key), {key});
  }
  for (const char* const key : {"company_name", "product_name", "external_editors"}) {
    std::string name = bundle.setting(key);
    if (std::string_view(key) == "product_name") name = replacingOccurrences(name, "/", ":");
    if (!isForFiles(name)) findings.add("product.folder-name", inSettings(key), {name});
  }
  const std::string& domain = bundle.setting("app_plist");
  if (domain.find('/') != std::string::npos || domain.ends_with(".plist")) {
    findings.add("product.domain", inSettings("app_plist"), {domain});
  }
}

/// A key that is missing means the sample's editor, as it did when there was no key for it.
void checkEditors(const InspectedBundle& bundle, Findings& findings) {
  const auto& sample = referenceSettings().texts;
  const std::string& company = bundle.setting("company_name");
  const bool isSample = company.empty() || company == sample.at("company_name");
  const bool isNamed = bundle.settings().texts.contains("external_editors");
  const bool isOfSample = !isNamed || bundle.setting("external_editors") == sample.at("external_editors");
  if (!isSample && isOfSample) findings.add("product.editors", inSettings("external_editors"));
}

bool isIdentifier(std::string_view text) {
  const bool isPlain = std::ranges::all_of(text, [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '.';
  });
  const auto parts = split(text, '.');
  return isPlain && parts.size() > 1 && std::ranges::none_of(parts, &std::string_view::empty);
}

bool isVersion(std::string_view text) {
  return std::ranges::all_of(split(text, '.'), [](std::string_view part) {
    return !part.empty() && part.find_first_not_of("0123456789") == std::string_view::npos;
  });
}

/// The installer's Info.plist; nothing, and a finding, when it cannot be used.
Value readOwnInfo(const InspectedBundle& bundle, Findings& findings) {
  const auto bytes = bundle.read(ownInfo);
  auto info = bytes ? readPropertyList(*bytes) : Result<Value>(Value());
  if (info && info->as<Value::Dictionary>() != nullptr) return std::move(*info);
  findings.add("product.info", {.file = ownInfo}, {info ? "it is missing or no dictionary" : info.error().reason()});
  return {};
}

/// The configuration takes precedence over the list.
void checkIdentity(const InspectedBundle& bundle, const Value& info, Findings& findings) {
  const auto checkValue = [&](std::string_view key, const char* infoKey, std::string_view id,
                              bool (*isRight)(std::string_view)) {
    const std::string& configured = bundle.setting(key);
    const std::string text = configured.empty() ? entryOf(info, infoKey).text() : configured;
    if (!isRight(text)) findings.add(id, inSettings(key), {text});
  };
  checkValue("installer_identifier", "CFBundleIdentifier", "product.identifier", isIdentifier);
  checkValue("product_version", "CFBundleShortVersionString", "product.version", isVersion);
}

}  // namespace

void checkProduct(const InspectedBundle& bundle, Findings& findings) {
  const Value info = readOwnInfo(bundle, findings);
  if (bundle.item(std::string(settingsTable)) == nullptr) {
    findings.add("product.no-table", {.file = std::string(settingsTable)});
  }
  if (!bundle.hasWholeSettings()) return;
  for (const std::string& language : bundle.languages()) {
    checkKeys(bundle, InspectedBundle::localized(language, "installer.strings"), findings);
  }
  checkIdentity(bundle, info, findings);
  checkNames(bundle, findings);
  checkEditors(bundle, findings);
}

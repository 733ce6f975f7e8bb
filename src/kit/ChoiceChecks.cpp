// SPDX-License-Identifier: Apache-2.0

// What the maker has chosen, and what the bundle has to hold for that.
#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "foundation/Path.h"
#include "foundation/Text.h"
#include "kit/Checks.h"
#include "payload/Configuration.h"

namespace {

constexpr const char* standAloneFolder = "Contents/SharedSupport/Standalone";
constexpr std::array<const char*, 2> earlierFolders = {"Contents/SharedSupport/PlugIn",
                                                       "Contents/SharedSupport/AutoLayer"};

bool isHidden(const std::string& path) { return lastPathComponent(path).starts_with('.'); }

void checkWords(const InspectedBundle& bundle, Findings& findings) {
  for (const std::string_view language : split(bundle.setting("languages"), ' ')) {
    if (language.empty() || bundle.hasLanguage(language)) continue;
    findings.add("product.language", inSettings("languages"), {language});
  }
  for (const std::string_view path : split(bundle.setting("external_editor_applications"), ';')) {
    const std::string_view application = trimmed(path);
    if (application.empty() || application.starts_with('/')) continue;
    findings.add("product.path", inSettings("external_editor_applications"), {application});
  }
  for (const ConfigurationKey& key : configurationKeys) {
    const std::string& text = bundle.setting(key.name);
    if (key.kind != ConfigurationKey::Kind::flag || text.empty() || text == "yes" || text == "no") continue;
    findings.add("product.flag", inSettings(key.name), {text});
  }
}

void checkPayloadFolder(const InspectedBundle& bundle, Findings& findings) {
  if (bundle.payloadFolder() == ownPayloadFolder) return;
  const std::string& name = bundle.setting("payload");
  if (!bundle.hasPayloadFolder()) findings.add("product.no-payload", inSettings("payload"), {name});
  if (bundle.item(std::string(ownPayloadFolder)) != nullptr) {
    findings.add("product.two-payloads", inSettings("payload"), {bundle.payloadFolder()});
  }
}

/// Items for a kind of host that is not looked for.
void checkHosts(const InspectedBundle& bundle, Findings& findings) {
  bool isUnknownNamed = false;
  for (const std::string_view host : split(bundle.setting("hosts"), ' ')) {
    if (host.empty() || std::ranges::find(hostKinds, host) != hostKinds.end()) continue;
    findings.add("product.host", inSettings("hosts"), {host});
    isUnknownNamed = true;
  }
  if (isUnknownNamed) return;
  const Configuration configuration(bundle.platform());
  const auto report = [&](std::string_view what, std::string_view host) {
    if (!configuration.offersHost(host)) findings.add("product.no-host", inSettings("hosts"), {what, host});
  };
  for (const TreeItem& item : bundle.items()) {
    const auto isIn = [&](const char* part) { return isAtOrBelow(item.path, joinPath(bundle.payloadFolder(), part)); };
    const bool isInstalled = (item.type == ItemType::regularFile || item.isPackage) && !isHidden(item.path);
    if (!isInstalled) continue;
    for (const char* const part : {"PHOTOSHOP", "PHOTOSHOP_PLUGINS"}) {
      if (isIn(part)) report(part, "photoshop");
    }
    if (isIn("LIGHTROOM")) report("LIGHTROOM", "lightroom");
    if (isIn("HD") && item.isPackage && pathExtension(item.path) == "lrplugin") {
      report(lastPathComponent(item.path), "lightroom");
    }
  }
  if (!bundle.setting("lightroom_preset").empty()) report("lightroom_preset", "lightroom");
}

/// Names of what is directly in the folder and can be meant, in ascending order; what a Mac leaves there is a mistake.
std::vector<std::string> namesIn(const InspectedBundle& bundle, const std::string& folder, Findings& findings) {
  std::vector<std::string> names;
  for (const TreeItem& item : bundle.items()) {
    if (deletingLastPathComponent(item.path) != folder) continue;
    if (isHidden(item.path)) {
      findings.add("product.hidden", {.file = item.path}, {lastPathComponent(item.path)});
    } else {
      names.push_back(lastPathComponent(item.path));
    }
  }
  std::ranges::sort(names);
  return names;
}

bool isInApplications(const InspectedBundle& bundle, const std::string& name) {
  return bundle.item(joinPath({bundle.payloadFolder(), "HD/Applications", name})) != nullptr;
}

/// What the install does besides copying, and what it needs for that.
void checkExtras(const InspectedBundle& bundle, Findings& findings) {
  if (bundle.setting("remove_earlier") == "yes") {
    bool isAny = false;
    for (const char* const folder : earlierFolders) isAny |= !namesIn(bundle, folder, findings).empty();
    if (!isAny) findings.add("product.earlier", inSettings("remove_earlier"));
  }
  if (bundle.setting("aperture_page") == "yes") {
    const auto names = namesIn(bundle, standAloneFolder, findings);
    if (names.empty()) {
      findings.add("product.stand-alone", inSettings("aperture_page"));
    } else if (bundle.hasPayloadFolder() && !isInApplications(bundle, names.front())) {
      findings.add("product.not-installed", {.file = joinPath(standAloneFolder, names.front())}, {names.front()});
    }
  }
  const std::string& preset = bundle.setting("lightroom_preset");
  if (!preset.empty() && bundle.hasPayloadFolder() && !isInApplications(bundle, preset)) {
    findings.add("product.preset", inSettings("lightroom_preset"), {preset});
  }
}

}  // namespace

void checkChoices(const InspectedBundle& bundle, Findings& findings) {
  if (!bundle.hasWholeSettings()) return;
  checkWords(bundle, findings);
  checkPayloadFolder(bundle, findings);
  checkHosts(bundle, findings);
  checkExtras(bundle, findings);
}

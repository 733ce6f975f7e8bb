// SPDX-License-Identifier: Apache-2.0

// Descriptions of the window, and the names in them.
#include <algorithm>
#include <array>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "foundation/Path.h"
#include "kit/Checks.h"
#include "kit/WindowNames.h"
#include "platform/window/InterfaceFile.h"

namespace {

bool isOneOf(std::span<const std::string_view> names, std::string_view name) {
  return std::ranges::find(names, name) != names.end();
}

bool isTextKey(std::string_view property) { return property == "textKey" || property == "nameKey"; }

void addTextKeys(const DescribedElement& element, std::set<std::string, std::less<>>& keys) {
  for (const auto& [property, value] : element.connections()) {
    if (isTextKey(property)) keys.insert(value);
  }
  for (const DescribedElement& child : element.children) addTextKeys(child, keys);
}

class DescriptionCheck {
 public:
  /// `texts` is null when a table is damaged, which may have any.
  DescriptionCheck(const InspectedBundle& bundle, const DescriptionNames& names, const Texts* texts, Findings& findings)
      : bundle_(bundle),
        names_(names),
        texts_(texts),
        file_(joinPath(resourcesFolder, names.file)),
        findings_(findings) {}

  void visit(const DescribedElement& element) {
    const std::string name = element.attribute("name");
    const bool isControl = element.name == "widget" || element.name == "action";
    if (isControl && !name.empty()) objects_.insert(name);
    if (isControl) {
      for (const auto& [property, value] : element.connections()) connect({file_, element.line, name}, property, value);
    }
    for (const DescribedElement& child : element.children) visit(child);
  }

  void reportMissingObjects() {
    for (const std::string_view wanted : names_.objects) {
      if (!objects_.contains(wanted))
        findings_.add("window.object", {.file = file_, .key = std::string(wanted)}, {wanted});
    }
  }

 private:
  void connect(const Place& place, std::string_view property, std::string_view value) {
    if (property == "action") {
      if (!isOneOf(names_.actions, value) && !isOneOf(applicationActions, value)) {
        findings_.add("window.action", place, {value});
      }
    } else if (property == "imageName") {
      if (!hasPicture(bundle_, value)) findings_.add("window.picture", place, {value});
    } else if (isTextKey(property)) {
      if (texts_ != nullptr && !texts_->contains(value)) findings_.add("window.text", place, {value});
    } else if (property.starts_with("bind") || property == "sets") {
      if (!isOneOf(bindingNames, property)) return findings_.add("window.binding", place, {property});
      const std::string_view key = value.substr(value.starts_with('!') ? 1 : 0);
      if (!hasKey(names_, key)) findings_.add("window.key", place, {key});
    } else if (!isOneOf(otherProperties, property)) {
      findings_.add("window.binding", place, {property});
    }
  }

  const InspectedBundle& bundle_;
  const DescriptionNames& names_;
  const Texts* texts_;
  std::string file_;
  Findings& findings_;
  std::set<std::string, std::less<>> objects_;
};

}  // namespace

std::set<std::string, std::less<>> textKeysOfWindow(const InspectedBundle& bundle) {
  std::set<std::string, std::less<>> keys;
  for (const DescriptionNames& names : descriptions()) {
    const auto description = parseInterfaceFile(bundle.read(joinPath(resourcesFolder, names.file)).value_or(""));
    if (description) addTextKeys(*description, keys);
  }
  return keys;
}

void checkWindow(const InspectedBundle& bundle, Findings& findings) {
  const Texts texts = wantedTexts(bundle);
  const bool isAnyDamaged = std::ranges::any_of(bundle.languages(), [&](const std::string& language) {
    return !bundle.table(InspectedBundle::localized(language, "Localizable.strings")).problem.empty();
  });
  for (const DescriptionNames& names : descriptions()) {
    const std::string file = joinPath(resourcesFolder, names.file);
    const auto bytes = bundle.read(file);
    if (!bytes) {
      findings.add("window.missing", {.file = file}, {names.file});
      continue;
    }
    const auto description = parseInterfaceFile(*bytes);
    if (!description || description->name != "ui") {
      findings.add("window.damaged", {.file = file}, {description ? "it is no window" : description.error().reason()});
      continue;
    }
    DescriptionCheck check(bundle, names, isAnyDamaged ? nullptr : &texts, findings);
    check.visit(*description);
    check.reportMissingObjects();
  }
}

// SPDX-License-Identifier: Apache-2.0

#include "payload/Configuration.h"

#include <algorithm>

#include "foundation/Text.h"

namespace {

// Of bundles that were made before there were keys for them.
constexpr std::string_view formerEditor = "Lumatra X";
constexpr std::string_view formerApplications =
    "/Applications/Corvane Pelloria 4.app;/Library/Application Support/Corvane/Dunmore 3/Corvane Dunmore 3.app";
constexpr std::string_view formerHosts = "photoshop lightroom";

/// Empty for a name that would lead elsewhere.
std::string asFileName(std::string name) {
  return name == "." || name == ".." || name.find('/') != std::string::npos ? "" : name;
}

std::vector<std::string> wordsOf(std::string_view text, char separator) {
  std::vector<std::string> words;
  for (const std::string_view word : split(text, separator)) {
    if (!trimmed(word).empty()) words.emplace_back(trimmed(word));
  }
  return words;
}

}  // namespace

std::string Configuration::text(std::string_view key, std::string_view whenMissing) const {
  return bundle_.localizedString(key, whenMissing, "installer");
}

bool Configuration::offersHost(std::string_view kind) const {
  std::vector<std::string> kinds = wordsOf(text("hosts"), ' ');
  if (kinds.empty()) kinds = wordsOf(formerHosts, ' ');
  return std::ranges::find(kinds, kind) != kinds.end();
}

std::string Configuration::externalEditors() const { return asFileName(text("external_editors", formerEditor)); }

std::vector<std::string> Configuration::externalEditorApplications() const {
  return wordsOf(text("external_editor_applications", formerApplications), ';');
}

std::string Configuration::lightroomPreset() const { return asFileName(text("lightroom_preset")); }

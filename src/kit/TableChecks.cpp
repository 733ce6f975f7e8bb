// SPDX-License-Identifier: Apache-2.0

// Tables of texts, one a language.
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/Format.h"
#include "foundation/Text.h"
#include "kit/Checks.h"
#include "kit/Reference.h"

namespace {

/// The texts of an administrators' tool may be left to English.
bool mayBeMissing(std::string_view key) { return key.starts_with("tool_"); }

/// "%@" for a single one, as tables write it.
std::string placeholdersFor(const std::set<std::size_t>& arguments) {
  if (arguments.empty()) return "no argument";
  if (arguments == std::set<std::size_t>{1}) return "%@";
  std::string text;
  for (const std::size_t number : arguments) text += (text.empty() ? "%" : " and %") + std::to_string(number) + "$@";
  return text;
}

void compareWith(const Texts& wantedTexts, const StringsTable& table, const std::string& file, Findings& findings) {
  for (const auto& [key, text] : table.texts) {
    const auto known = wantedTexts.find(key);
    if (known == wantedTexts.end()) {
      // What a picture says to who does not see it: as many as there are pictures.
      if (!key.starts_with("picture_")) findings.add("tables.unknown-key", {.file = file, .key = key}, {key});
      continue;
    }
    const auto wanted = argumentsOf(known->second);
    const auto shown = argumentsOf(text);
    if (text.empty() && !known->second.empty()) {
      findings.add("tables.empty", {.file = file, .key = key}, {key});
    } else if (shown != wanted) {
      findings.add("tables.placeholders", {.file = file, .key = key},
                   {placeholdersFor(shown), placeholdersFor(wanted)});
    }
  }
  for (const auto& [key, text] : wantedTexts) {
    if (!table.texts.contains(key) && !mayBeMissing(key)) {
      findings.add("tables.missing-key", {.file = file, .key = key}, {key, text});
    }
  }
}

/// Takes "line 12: why" apart.
void reportDamage(const std::string& problem, const std::string& file, Findings& findings) {
  if (problem == wrongEncoding) return findings.add("tables.encoding", {.file = file}, {problem});
  constexpr std::string_view prefix = "line ";
  const std::size_t colon = problem.find(": ");
  if (!problem.starts_with(prefix) || colon == std::string::npos) {
    return findings.add("tables.damaged", {.file = file}, {problem});
  }
  const auto line = static_cast<std::size_t>(integerValue(std::string_view(problem).substr(prefix.size())));
  findings.add("tables.damaged", {.file = file, .line = line}, {problem.substr(colon + 2)});
}

/// Whether the table is whole.
bool checkForm(const StringsTable& table, const std::string& file, Findings& findings) {
  if (!table.problem.empty()) {
    reportDamage(table.problem, file, findings);
    return false;
  }
  for (const std::string& key : table.repeated) findings.add("tables.repeated", {.file = file, .key = key}, {key});
  return true;
}

}  // namespace

Texts wantedTexts(const InspectedBundle& bundle) {
  Texts wanted = referenceTexts().texts;
  const auto named = textKeysOfWindow(bundle);
  std::vector<std::string> languages = bundle.languages();
  languages.insert(languages.begin(), "en");
  for (const std::string& language : languages) {
    for (const auto& [key, text] : bundle.table(InspectedBundle::localized(language, "Localizable.strings")).texts) {
      if (named.contains(key)) wanted.emplace(key, text);
    }
  }
  return wanted;
}

void checkTables(const InspectedBundle& bundle, Findings& findings) {
  const std::string configuration(settingsTable);
  checkForm(bundle.settings(), configuration, findings);
  if (!bundle.hasWholeSettings()) return;  // which languages there should be is unknown
  const Texts wanted = wantedTexts(bundle);
  const std::string english = InspectedBundle::localized("en", "Localizable.strings");
  if (bundle.item(english) == nullptr) findings.add("tables.no-english", {.file = english});
  for (const std::string& language : bundle.languages()) {
    const std::string file = InspectedBundle::localized(language, "Localizable.strings");
    if (bundle.item(file) != nullptr) {
      const StringsTable table = bundle.table(file);
      if (checkForm(table, file, findings)) compareWith(wanted, table, file, findings);
    } else if (language != "en") {
      findings.add("tables.none", {.file = file}, {language});
    }
    const std::string settings = InspectedBundle::localized(language, "installer.strings");
    checkForm(bundle.table(settings), settings, findings);
  }
}

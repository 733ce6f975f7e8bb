// SPDX-License-Identifier: Apache-2.0

// Tables of texts, one a language.
#include <charconv>
#include <set>
#include <string>
#include <string_view>

#include "foundation/Format.h"
#include "foundation/Text.h"
#include "kit/Checks.h"
#include "kit/Reference.h"
#include "platform/propertylist/PropertyList.h"

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

void compareWithReference(const StringsTable& table, const std::string& file, Findings& findings) {
  for (const auto& [key, text] : table.texts) {
    const auto reference = referenceTexts().texts.find(key);
    if (reference == referenceTexts().texts.end()) {
      // What a picture says to who does not see it: as many as there are pictures.
      if (!key.starts_with("picture_")) findings.add("tables.unknown-key", {.file = file, .key = key}, {key});
      continue;
    }
    const auto wanted = argumentsOf(reference->second);
    const auto shown = argumentsOf(text);
    if (text.empty() && !reference->second.empty()) {
      findings.add("tables.empty", {.file = file, .key = key}, {key});
    } else if (shown != wanted) {
      findings.add("tables.placeholders", {.file = file, .key = key},
                   {placeholdersFor(shown), placeholdersFor(wanted)});
    }
  }
  for (const auto& [key, text] : referenceTexts().texts) {
    if (!table.texts.contains(key) && !mayBeMissing(key)) {
      findings.add("tables.missing-key", {.file = file, .key = key}, {key, text});
    }
  }
}

/// Takes "line 12: why" apart.
void reportDamage(const std::string& problem, const std::string& file, Findings& findings) {
  constexpr std::string_view prefix = "line ";
  const std::size_t colon = problem.find(": ");
  if (!problem.starts_with(prefix) || colon == std::string::npos) {
    return findings.add("tables.encoding", {.file = file}, {problem});
  }
  const auto line = static_cast<std::size_t>(integerValue(std::string_view(problem).substr(prefix.size())));
  findings.add("tables.damaged", {.file = file, .line = line}, {problem.substr(colon + 2)});
}

void checkTable(const std::string& bytes, const std::string& file, bool isTexts, Findings& findings) {
  if (bytes.starts_with("bplist") || bytes.starts_with("<?xml")) {  // as a build for Macs compiles them
    const auto list = readPropertyList(bytes);
    if (!list) return findings.add("tables.damaged", {.file = file}, {list.error().reason()});
    StringsTable table;
    const auto* const entries = list->as<Value::Dictionary>();
    if (entries != nullptr) {
      for (const auto& [key, text] : *entries) table.texts.emplace(key, text.text());
    }
    if (isTexts) compareWithReference(table, file, findings);
    return;
  }
  const StringsTable table = parseStringsTable(bytes);
  if (!table.problem.empty()) return reportDamage(table.problem, file, findings);
  for (const std::string& key : table.repeated) findings.add("tables.repeated", {.file = file, .key = key}, {key});
  if (isTexts) compareWithReference(table, file, findings);
}

}  // namespace

void checkTables(const InspectedBundle& bundle, Findings& findings) {
  const std::string english = InspectedBundle::localized("en", "Localizable.strings");
  if (bundle.item(english) == nullptr) findings.add("tables.no-english", {.file = english});
  for (const std::string& language : bundle.languages()) {
    const std::string file = InspectedBundle::localized(language, "Localizable.strings");
    const auto bytes = bundle.read(file);
    if (bytes) {
      checkTable(*bytes, file, /*isTexts=*/true, findings);
    } else if (language != "en") {
      findings.add("tables.none", {.file = file}, {language});
    }
    const std::string settings = InspectedBundle::localized(language, "installer.strings");
    if (const auto table = bundle.read(settings)) checkTable(*table, settings, /*isTexts=*/false, findings);
  }
}

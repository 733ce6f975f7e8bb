// SPDX-License-Identifier: Apache-2.0

// The licence, and pages of rich text.
#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/Exception.h"
#include "foundation/Path.h"
#include "foundation/RichText.h"
#include "foundation/Text.h"
#include "kit/Checks.h"

namespace {

constexpr std::string_view replacementCharacter = "\uFFFD";

constexpr std::string_view aperturePage = "aperture.rtf";

struct Page {
  std::string_view name;
  std::string_view placeholder;  ///< without which the page makes no sense; may be empty
};
constexpr std::array<Page, 4> pages = {
    {{"host_running.rtf", "%HOSTNAME%"}, {"proceed.rtf", "%PRODUCTNAME%"}, {"register.rtf", ""}, {aperturePage, ""}}};
constexpr std::array<std::string_view, 3> placeholders = {"%HOSTNAME%", "%PRODUCTNAME%", "%COMPANYNAME%"};

/// Words in capitals between two per-cent signs.
std::vector<std::string> placeholdersIn(std::string_view text) {
  std::vector<std::string> found;
  for (std::size_t start = 0; (start = text.find('%', start)) != std::string_view::npos; ++start) {
    const std::size_t end = text.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ_", start + 1);
    if (end == std::string_view::npos || end == start + 1 || text[end] != '%') continue;
    found.emplace_back(text.substr(start, end + 1 - start));
    start = end;
  }
  return found;
}

void checkPage(const Page& page, const std::string& file, const std::string& bytes, Findings& findings) {
  std::string text;
  try {
    text = parseRichTextFormat(bytes).string();
  } catch (const Exception& exception) {
    return findings.add("texts.page-damaged", {.file = file}, {exception.what()});
  }
  if (trimmed(text).empty()) return findings.add("texts.page-empty", {.file = file});
  if (text.find(replacementCharacter) != std::string::npos) findings.add("texts.page-characters", {.file = file});
  bool isMisspelt = false;
  for (const std::string& placeholder : placeholdersIn(text)) {
    if (std::ranges::find(placeholders, placeholder) != placeholders.end()) continue;
    findings.add("texts.page-placeholder", {.file = file}, {placeholder});
    isMisspelt = true;
  }
  if (!isMisspelt && text.find(page.placeholder) == std::string::npos) {
    findings.add("texts.page-lacks", {.file = file}, {page.placeholder});
  }
}

void checkLicence(const std::string& file, const std::string& bytes, Findings& findings) {
  if (!isValidUtf8(bytes)) {
    findings.add("texts.licence-encoding", {.file = file});
  } else if (trimmed(bytes).empty()) {
    findings.add("texts.licence-empty", {.file = file});
  }
}

/// Reads the resource in every language and reports where there is none.
template <class Check>
void checkEach(const InspectedBundle& bundle, std::string_view name, std::string_view idWhenMissing, Findings& findings,
               const Check& check) {
  const std::string id(idWhenMissing);
  const std::string fallback = bundle.fallbackLanguage();
  const bool isForAll = bundle.item(joinPath(resourcesFolder, name)) != nullptr;
  const bool hasFallback =
      std::ranges::any_of(std::array<std::string_view, 3>{fallback, "en", "Base"},
                          [&](auto other) { return bundle.item(InspectedBundle::localized(other, name)) != nullptr; });
  for (const std::string& language : bundle.languages()) {
    const std::string file = InspectedBundle::localized(language, name);
    const bool isOffered = language != "en" || fallback == "en";
    const auto bytes = bundle.read(file);
    if (bytes) {
      check(file, *bytes);
    } else if (isOffered && !isForAll && !hasFallback) {
      findings.add(id + "-missing", {.file = InspectedBundle::localized(fallback, name)}, {name});
    } else if (isOffered && !isForAll && language != "en") {
      findings.add(id + "-untranslated", {.file = file}, {name, language});
    }
  }
}

/// Of a text with no placeholders but those of the names.
void checkPlaceholders(std::string_view text, const Place& place, Findings& findings) {
  for (const std::string& placeholder : placeholdersIn(text)) {
    if (placeholder == "%PRODUCTNAME%" || placeholder == "%COMPANYNAME%") continue;
    findings.add("texts.placeholder", place, {placeholder});
  }
}

}  // namespace

void checkTexts(const InspectedBundle& bundle, Findings& findings) {
  checkEach(bundle, "license.txt", "texts.licence", findings, [&](const std::string& file, const std::string& bytes) {
    checkLicence(file, bytes, findings);
    checkPlaceholders(bytes, {.file = file}, findings);
  });
  for (const Page& page : pages) {
    if (page.name == aperturePage && bundle.setting("aperture_page") != "yes") continue;
    checkEach(bundle, page.name, "texts.page", findings,
              [&](const std::string& file, const std::string& bytes) { checkPage(page, file, bytes, findings); });
  }
  for (const std::string& language : bundle.languages()) {
    for (const char* const table : {"Localizable.strings", "installer.strings"}) {
      const std::string file = InspectedBundle::localized(language, table);
      for (const auto& [key, text] : bundle.table(file).texts) {
        checkPlaceholders(text, {.file = file, .key = key}, findings);
      }
    }
  }
}

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

struct Page {
  std::string_view name;
  std::string_view placeholder;  ///< without which the page makes no sense; may be empty
};
constexpr std::array<Page, 4> pages = {
    {{"host_running.rtf", "%HOSTNAME%"}, {"proceed.rtf", "%PRODUCTNAME%"}, {"register.rtf", ""}, {"aperture.rtf", ""}}};
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

/// Where a resource of a language is looked for after the language's own folder.
bool hasFallback(const InspectedBundle& bundle, std::string_view name) {
  return bundle.item(InspectedBundle::localized("en", name)) != nullptr ||
         bundle.item(InspectedBundle::localized("Base", name)) != nullptr ||
         bundle.item(joinPath(resourcesFolder, name)) != nullptr;
}

/// Reads the resource in every language and reports where there is none.
template <class Check>
void checkEach(const InspectedBundle& bundle, std::string_view name, std::string_view idWhenMissing, Findings& findings,
               const Check& check) {
  const std::string id(idWhenMissing);
  const bool isAnywhere = hasFallback(bundle, name);
  const bool isForAll = bundle.item(joinPath(resourcesFolder, name)) != nullptr;
  if (!isAnywhere) findings.add(id + "-missing", {.file = InspectedBundle::localized("en", name)}, {name});
  for (const std::string& language : bundle.languages()) {
    const std::string file = InspectedBundle::localized(language, name);
    const auto bytes = bundle.read(file);
    if (bytes) {
      check(file, *bytes);
    } else if (isAnywhere && !isForAll && language != "en") {
      findings.add(id + "-untranslated", {.file = file}, {name, language});
    }
  }
}

}  // namespace

void checkTexts(const InspectedBundle& bundle, Findings& findings) {
  checkEach(bundle, "license.txt", "texts.licence", findings,
            [&](const std::string& file, const std::string& bytes) { checkLicence(file, bytes, findings); });
  for (const Page& page : pages) {
    checkEach(bundle, page.name, "texts.page", findings,
              [&](const std::string& file, const std::string& bytes) { checkPage(page, file, bytes, findings); });
  }
}

// SPDX-License-Identifier: Apache-2.0

// Names in texts that are not this product's.
#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/Exception.h"
#include "foundation/Path.h"
#include "foundation/RichText.h"
#include "foundation/Text.h"
#include "kit/Checks.h"
#include "kit/Reference.h"
#include "kit/Template.h"

namespace {

constexpr const char* ownInfoList = "Contents/Info.plist";

std::string inLowerCase(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(),
                         [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  return lower;
}

/// Names that are not this product's: those of the template, and those of the sample.
std::vector<std::string> foreignNames(const InspectedBundle& bundle) {
  std::vector<std::string> names(templateNames.begin(), templateNames.end());
  if (bundle.setting("company_name").empty()) return names;  // which is mistake enough
  for (const char* const key : {"company_name", "product_name"}) {
    const std::string sample = referenceSettings().texts.at(key);
    const bool isOwn = inLowerCase(bundle.setting(key)).find(inLowerCase(sample)) != std::string::npos;
    if (!isOwn) names.push_back(sample);
  }
  return names;
}

/// Searches texts for the names.
class LeftoverSearch {
 public:
  LeftoverSearch(const InspectedBundle& bundle, Findings& findings)
      : findings_(findings), names_(foreignNames(bundle)) {}

  void searchIn(std::string_view text, const Place& place) const {
    const std::string lower = inLowerCase(text);
    for (const std::string& name : names_) {
      if (lower.find(inLowerCase(name)) != std::string::npos) findings_.add("product.leftover", place, {name});
    }
  }

  void searchLines(std::string_view text, const std::string& file) const {
    std::size_t line = 0;
    for (const std::string_view content : split(text, '\n')) searchIn(content, {.file = file, .line = ++line});
  }

  void searchTable(const StringsTable& table, const std::string& file) const {
    for (const auto& [key, text] : table.texts) searchIn(text, {.file = file, .key = key});
  }

  void searchPage(std::string_view bytes, const std::string& file) const {
    try {
      searchIn(parseRichTextFormat(bytes).string(), {.file = file});
    } catch (const Exception&) {  // which is a finding of its own
    }
  }

 private:
  Findings& findings_;
  std::vector<std::string> names_;
};

/// Whether the file is one of a language that is not offered.
bool isOfOtherLanguage(const InspectedBundle& bundle, const std::string& path) {
  const std::string folder = lastPathComponent(deletingLastPathComponent(path));
  return pathExtension(folder) == "lproj" && !bundle.hasLanguage(folder.substr(0, folder.rfind('.')));
}

}  // namespace

void checkLeftovers(const InspectedBundle& bundle, Findings& findings) {
  const LeftoverSearch search(bundle, findings);
  for (const TreeItem& item : bundle.items()) {
    const bool isOwn = isAtOrBelow(item.path, resourcesFolder) && !isAtOrBelow(item.path, ownPayloadFolder);
    if (item.type != ItemType::regularFile || (!isOwn && item.path != ownInfoList)) continue;
    if (isOfOtherLanguage(bundle, item.path)) continue;
    const std::string_view type = pathExtension(item.path);
    const std::string bytes = bundle.read(item.path).value_or("");
    if (type == "strings") {
      search.searchTable(bundle.table(item.path), item.path);
    } else if (type == "rtf") {
      search.searchPage(bytes, item.path);
    } else if (type == "txt" || type == "ui" || item.path == ownInfoList) {
      search.searchLines(decodeTextFile(bytes).text, item.path);
    }
  }
}

// SPDX-License-Identifier: Apache-2.0

#include "kit/Finding.h"

#include <algorithm>
#include <span>
#include <stdexcept>
#include <tuple>
#include <utility>

#include "foundation/Format.h"

std::string_view nameOf(Severity severity) { return severity == Severity::error ? "error" : "warning"; }

std::string shownPlace(const Place& place) {
  std::string shown = place.file;
  if (place.line != 0) shown += ":" + std::to_string(place.line);
  if (!place.key.empty()) shown += " (" + place.key + ")";
  return shown;
}

void Findings::add(std::string_view id, Place place, std::initializer_list<std::string_view> details) {
  const auto& entries = catalogue();
  const auto entry = std::ranges::find(entries, id, &CatalogueEntry::id);
  if (entry == entries.end()) throw std::logic_error("no finding is called " + std::string(id));
  const std::span<const std::string_view> arguments(details.begin(), details.size());
  Finding finding{.id = std::string(id),
                  .severity = entry->severity,
                  .place = std::move(place),
                  .what = formatted(entry->what, arguments),
                  .consequence = formatted(entry->consequence, arguments),
                  .fix = formatted(entry->fix, arguments)};
  const std::string identity = finding.id + "\n" + finding.what + "\n" + shownPlace(finding.place);
  if (known_.insert(identity).second) findings_.push_back(std::move(finding));
}

std::vector<Finding> Findings::sorted() const {
  const auto rank = [](const Finding& finding) {
    return std::tie(finding.severity, finding.place.file, finding.place.line, finding.place.key, finding.id);
  };
  std::vector<Finding> sorted = findings_;
  std::ranges::stable_sort(sorted, [&](const Finding& a, const Finding& b) { return rank(a) < rank(b); });
  return sorted;
}

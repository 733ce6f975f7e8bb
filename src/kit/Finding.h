// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <initializer_list>
#include <set>
#include <string>
#include <string_view>
#include <vector>

/// How much harm a mistake of the maker does.
enum class Severity {
  error,    ///< something is not installed, not started or not shown
  warning,  ///< users see something wrong, or some of them do
};

/// "error" or "warning".
[[nodiscard]] std::string_view nameOf(Severity severity);

/// Where in a bundle something is. The path is relative to the bundle.
struct Place {
  std::string file;
  std::size_t line = 0;  ///< from 1; 0 where the whole file is meant
  std::string key = {};  ///< of a table, or the name of a control; may be empty
};

/// "file:line (key)", without what there is none of.
[[nodiscard]] std::string shownPlace(const Place& place);

/// A mistake in a bundle, in plain English.
struct Finding {
  std::string id;  ///< stays the same from version to version
  Severity severity = Severity::error;
  Place place;
  std::string what;
  std::string consequence;  ///< for users
  std::string fix;
};

/// Everything that checks have found. The texts are those of the catalogue, where "%1$@" stands for the first detail.
class Findings {
 public:
  /// `id` is one of the catalogue. A finding that is there already is not added again.
  void add(std::string_view id, Place place, std::initializer_list<std::string_view> details = {});

  /// The most serious ones first, then by file, line and key.
  [[nodiscard]] std::vector<Finding> sorted() const;

 private:
  std::vector<Finding> findings_;
  std::set<std::string> known_;  ///< what each says and where, on a line of its own
};

/// What the catalogue says of one kind of mistake.
struct CatalogueEntry {
  std::string_view id;
  Severity severity;
  std::string_view what;
  std::string_view consequence;
  std::string_view fix;
};

/// Every kind of mistake that is looked for.
[[nodiscard]] const std::vector<CatalogueEntry>& catalogue();

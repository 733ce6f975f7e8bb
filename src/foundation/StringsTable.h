// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>

/// One table of localized texts, from the text form of a .strings file:
///
///     /* comment */
///     "key" = "text with \"escapes\" and \U00e4";   // quotes are optional around a plain word
///
/// A malformed file gives the entries before the first error.
struct StringsTable {
  std::map<std::string, std::string, std::less<>> texts;
  /// Keys that the file has more than once; the last text counts.
  std::set<std::string, std::less<>> repeated = {};
  /// Describes the first error, with its line unless it is wrongEncoding; empty when there is none.
  std::string problem;
};

inline constexpr std::string_view wrongEncoding = "some of it is neither UTF-8 nor UTF-16";

/// Parses UTF-8 or UTF-16 (see decodeTextFile()).
[[nodiscard]] StringsTable parseStringsTable(std::string_view bytes);

#pragma once

#include <map>
#include <string>
#include <string_view>

/// One table of localized texts, from the text form of a .strings file:
///
///     /* comment */
///     "key" = "text with \"escapes\" and \U00e4";   // the quotes may go where a word is plain
///
/// A file that is wrong somewhere still gives every entry that stands before the fault.
struct StringsTable {
  std::map<std::string, std::string, std::less<>> texts;
  /// What is wrong with the file, with the line it is in; empty when nothing is.
  std::string problem;
};

/// Reads UTF-8 and UTF-16 (see decodeTextFile()).
[[nodiscard]] StringsTable parseStringsTable(std::string_view bytes);

// SPDX-License-Identifier: Apache-2.0

#include "foundation/StringsTable.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

#include "foundation/Text.h"

namespace {

class TableParser {
 public:
  explicit TableParser(std::string_view text) : text_(text) {}

  StringsTable parse() {
    StringsTable table;
    bool isBraced = false;
    skipBlanks();
    if (consume('{')) isBraced = true;  // the old form of a whole property list
    for (;;) {
      skipBlanks();
      if (!problem_.empty() || atEnd() || (isBraced && consume('}'))) break;
      auto key = parseText();
      if (!key) break;
      std::size_t end = next_;
      skipBlanks();
      std::string text = *key;  // a key without a value is its own value
      if (consume('=')) {
        skipBlanks();
        auto value = parseText();
        if (!value) break;
        text = std::move(*value);
        end = next_;
        skipBlanks();
      }
      if (!consume(';')) {
        next_ = end;
        fail("a semicolon is missing");
        break;
      }
      if (table.texts.contains(*key)) table.repeated.insert(*key);
      table.texts.insert_or_assign(std::move(*key), std::move(text));
    }
    table.problem = std::move(problem_);
    return table;
  }

 private:
  [[nodiscard]] bool atEnd() const { return next_ >= text_.size(); }
  [[nodiscard]] std::string_view rest() const { return text_.substr(next_); }

  bool consume(char c) {
    if (atEnd() || text_[next_] != c) return false;
    ++next_;
    return true;
  }

  void fail(std::string_view what) {
    const auto line = 1 + std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(next_), '\n');
    problem_ = "line " + std::to_string(line) + ": " + std::string(what);
  }

  void skipBlanks() {
    while (!atEnd()) {
      if (rest().starts_with("/*")) {
        const std::size_t end = text_.find("*/", next_ + 2);
        if (end == std::string_view::npos) return fail("a comment does not end");
        next_ = end + 2;
      } else if (rest().starts_with("//")) {
        next_ = std::min(text_.find('\n', next_), text_.size());
      } else if (text_[next_] == ' ' || (text_[next_] >= '\t' && text_[next_] <= '\r')) {
        ++next_;
      } else {
        return;
      }
    }
  }

  std::optional<std::string> parseText() {
    if (atEnd()) {
      fail("the file ends too early");
      return std::nullopt;
    }
    if (text_[next_] == '"' || text_[next_] == '\'') return parseQuoted();
    const std::size_t start = next_;
    while (!atEnd() && isPlain(text_[next_])) ++next_;
    if (next_ == start) {
      fail("a text in quotes is missing");
      return std::nullopt;
    }
    return std::string(text_.substr(start, next_ - start));
  }

  static bool isPlain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("_-.:/$").find(c) != std::string_view::npos;
  }

  std::optional<std::string> parseQuoted() {
    const std::size_t start = next_;
    const char quote = text_[next_++];
    std::string result;
    while (!atEnd()) {
      const char c = text_[next_++];
      if (c == quote) return result;
      if (c == '\\' && !atEnd()) {
        appendEscape(result);
      } else {
        result += c;
      }
    }
    next_ = start;
    fail("a quoted text does not end");
    return std::nullopt;
  }

  void appendEscape(std::string& result) {
    const char c = text_[next_++];
    switch (c) {
      case 'n': result += '\n'; break;
      case 't': result += '\t'; break;
      case 'r': result += '\r'; break;
      case 'a': result += '\a'; break;
      case 'b': result += '\b'; break;
      case 'f': result += '\f'; break;
      case 'v': result += '\v'; break;
      case 'U':
      case 'u': appendUtf16Escapes(result); break;
      default:
        if (c >= '0' && c <= '7') {
          --next_;
          appendUtf8(result, parseDigits(8, 3));
        } else {
          result += c;
        }
    }
  }

  /// Decodes \Uhhhh, and the escape after it when the two are a surrogate pair.
  void appendUtf16Escapes(std::string& result) {
    const std::uint32_t high = parseDigits(16, 4);
    const bool isHighHalf = high >= 0xD800 && high <= 0xDBFF;
    if (isHighHalf && (rest().starts_with("\\U") || rest().starts_with("\\u"))) {
      const std::size_t before = next_;
      next_ += 2;
      const std::uint32_t low = parseDigits(16, 4);
      if (low >= 0xDC00 && low <= 0xDFFF) {
        return appendUtf8(result, 0x10000 + ((high - 0xD800) << 10U) + (low - 0xDC00));
      }
      next_ = before;
    }
    appendUtf8(result, high);
  }

  std::uint32_t parseDigits(std::uint32_t base, int most) {
    std::uint32_t value = 0;
    for (int i = 0; i < most && !atEnd(); ++i) {
      const char c = text_[next_];
      std::uint32_t digit = base;
      if (c >= '0' && c <= '9') digit = static_cast<std::uint32_t>(c - '0');
      if (c >= 'a' && c <= 'f') digit = static_cast<std::uint32_t>(c - 'a') + 10;
      if (c >= 'A' && c <= 'F') digit = static_cast<std::uint32_t>(c - 'A') + 10;
      if (digit >= base) break;
      value = value * base + digit;
      ++next_;
    }
    return value;
  }

  std::string_view text_;
  std::size_t next_ = 0;
  std::string problem_;
};

}  // namespace

StringsTable parseStringsTable(std::string_view bytes) {
  const DecodedText decoded = decodeTextFile(bytes);
  StringsTable table = TableParser(decoded.text).parse();
  if (table.problem.empty() && !decoded.lossless) table.problem = wrongEncoding;
  return table;
}

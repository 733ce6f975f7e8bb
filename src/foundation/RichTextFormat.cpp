// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "foundation/CodePage.h"
#include "foundation/Exception.h"
#include "foundation/RichText.h"
#include "foundation/RichTextTokens.h"
#include "foundation/Text.h"

// The format is a tree of groups in braces, with control words ("\b0 "), control symbols ("\~") and characters in it. A
// control word sets something for the rest of its group; some name the group as a destination, whose content is no
// text.

namespace {

using Attributes = RichText::Attributes;

struct NamedCharacter {
  std::string_view name;
  std::string_view text;
};
constexpr NamedCharacter namedCharacters[] = {
    {"par", "\n"},      {"line", "\n"},  {"tab", "\t"},         {"emdash", "—"},
    {"endash", "–"},    {"lquote", "‘"}, {"rquote", "’"},       {"ldblquote", "“"},
    {"rdblquote", "”"}, {"bullet", "•"}, {"emspace", "\u2003"}, {"enspace", "\u2002"},
    {"sect", "\n"},     {"page", "\n"},  {"cell", "\t"},        {"row", "\n"}};

/// Destinations that are skipped although they are not marked as optional.
constexpr std::string_view destinationsWithoutText[] = {
    "fonttbl",   "stylesheet", "info",     "pict",    "nonshppict", "header",     "headerl",
    "headerr",   "headerf",    "footer",   "footerl", "footerr",    "footerf",    "filetbl",
    "listtable", "object",     "footnote", "fldinst", "annotation", "NeXTGraphic"};

/// Maximum number of substitute characters for a code point.
constexpr std::int64_t maxFallback = 16;

class Reader {
 public:
  explicit Reader(std::string_view bytes) : tokens_(bytes) {}

  RichText read() {
    for (;;) {
      const RichTextToken token = tokens_.next();
      switch (token.kind) {
        case RichTextToken::Kind::openGroup:
          if (groups_.size() >= deepest) throw Exception("rich text format that is nested too deeply");
          skipped_ = 0;
          groups_.push_back(group());
          break;
        case RichTextToken::Kind::closeGroup:
          skipped_ = 0;
          groups_.pop_back();
          if (groups_.size() == 1) return finish();
          break;
        case RichTextToken::Kind::byte: addByte(token.byte); break;
        case RichTextToken::Kind::word: apply(token.word, token.number); break;
        case RichTextToken::Kind::symbol: applySymbol(static_cast<char>(token.byte)); break;
        case RichTextToken::Kind::end: throw Exception("rich text format that ends too early");
      }
    }
  }

 private:
  struct Group {
    Attributes attributes;
    int bytesAfterUnicode = 1;  ///< number of substitute bytes after a code point
    bool isText = true;
    bool isColourTable = false;
  };

  Group& group() { return groups_.back(); }

  RichText finish() {
    closePair();
    flush();
    return std::move(result_);
  }

  void flush() {
    result_.append(pending_, pendingAttributes_);
    pending_.clear();
  }

  /// Where the text that follows goes, when its attributes differ from those of the text before it.
  std::string& text() {
    if (!(pendingAttributes_ == group().attributes)) {
      flush();
      pendingAttributes_ = group().attributes;
    }
    return pending_;
  }

  void addText(std::string_view characters) {
    if (skipped_ > 0) {
      --skipped_;
      return;
    }
    closePair();
    if (group().isText) text() += characters;
  }

  /// The first half of a pair of UTF-16 units that was not followed by the second.
  void closePair() {
    if (std::exchange(highHalf_, 0) != 0 && group().isText) text() += "\uFFFD";
  }

  void addCodePoint(std::uint32_t codePoint) {
    std::string character;
    const bool isShown = codePoint >= ' ' || codePoint == '\t';
    if (isShown) appendUtf8(character, codePoint);
    addText(character);
  }

  void addByte(std::uint8_t byte) {
    if (group().isColourTable && byte == ';') {
      colours_.push_back(colour_);
      colour_ = std::nullopt;
      return;
    }
    addCodePoint(codePointOf(byte, codePage_));
  }

  void applySymbol(char symbol) {
    switch (symbol) {
      case '~': addText("\u00A0"); break;
      case '_': addText("\u2011"); break;
      case '*': group().isText = false; break;  // an optional destination
      case '\r':
      case '\n': addText("\n"); break;
      default: break;
    }
  }

  void apply(std::string_view word, std::optional<std::int64_t> number) {
    Attributes& attributes = group().attributes;
    const bool isOn = number.value_or(1) != 0;
    if (const auto* named = std::ranges::find(namedCharacters, word, &NamedCharacter::name);
        named != std::end(namedCharacters)) {
      addText(named->text);
    } else if (word == "u") {
      addUtf16Unit(static_cast<std::uint16_t>(number.value_or(0)));
    } else if (word == "uc") {
      group().bytesAfterUnicode = static_cast<int>(std::clamp<std::int64_t>(number.value_or(1), 0, maxFallback));
    } else if (word == "b") {
      attributes.bold = isOn;
    } else if (word == "i") {
      attributes.italic = isOn;
    } else if (word == "ul") {
      attributes.underline = isOn;
    } else if (word == "ulnone") {
      attributes.underline = false;
    } else if (word == "fs") {
      attributes.size = static_cast<double>(std::clamp<std::int64_t>(number.value_or(24), 0, 400)) / 2;
    } else if (word == "cf") {
      const auto index = static_cast<std::size_t>(std::max<std::int64_t>(number.value_or(0), 0));
      attributes.colour = index < colours_.size() ? colours_[index] : std::nullopt;
    } else if (word == "plain") {
      attributes = {
          .alignment = attributes.alignment, .indent = attributes.indent, .spaceAfter = attributes.spaceAfter};
    } else {
      applyToParagraph(word, number.value_or(0));
    }
  }

  void applyToParagraph(std::string_view word, std::int64_t number) {
    Attributes& attributes = group().attributes;
    constexpr double twipsInPoint = 20;
    const double points = static_cast<double>(std::clamp<std::int64_t>(number, 0, 10'000)) / twipsInPoint;
    if (word == "pard") {
      attributes.alignment = RichText::Alignment::natural;
      attributes.indent = attributes.spaceAfter = 0;
    } else if (word == "ql") {
      attributes.alignment = RichText::Alignment::natural;
    } else if (word == "qc") {
      attributes.alignment = RichText::Alignment::centre;
    } else if (word == "qr") {
      attributes.alignment = RichText::Alignment::right;
    } else if (word == "qj") {
      attributes.alignment = RichText::Alignment::justified;
    } else if (word == "li") {
      attributes.indent = points;
    } else if (word == "sa") {
      attributes.spaceAfter = points;
    } else {
      applyToTables(word, number);
    }
  }

  void applyToTables(std::string_view word, std::int64_t number) {
    const auto component = static_cast<std::uint8_t>(std::clamp<std::int64_t>(number, 0, 255));
    if (word == "ansicpg") {
      codePage_ = codePageOfNumber(number);
    } else if (word == "mac") {
      codePage_ = CodePage::macRoman;
    } else if (word == "pc" || word == "pca") {
      codePage_ = CodePage::unknown;
    } else if (word == "bin") {
      tokens_.skip(static_cast<std::size_t>(std::max<std::int64_t>(number, 0)));
    } else if (word == "colortbl") {
      group().isText = false;
      group().isColourTable = true;
    } else if (std::ranges::find(destinationsWithoutText, word) != std::end(destinationsWithoutText)) {
      group().isText = false;
    } else if (group().isColourTable && (word == "red" || word == "green" || word == "blue")) {
      if (!colour_) colour_ = RichText::Colour{};
      (word == "red" ? colour_->red : word == "green" ? colour_->green : colour_->blue) = component;
    }
  }

  void addUtf16Unit(std::uint16_t unit) {
    const bool isHigh = unit >= 0xD800 && unit <= 0xDBFF;
    const bool isLow = unit >= 0xDC00 && unit <= 0xDFFF;
    skipped_ = 0;
    if (isLow && highHalf_ != 0) {
      const std::uint32_t high = std::exchange(highHalf_, 0);
      addCodePoint(0x10000U + ((high - 0xD800U) << 10U) + (unit - 0xDC00U));
    } else if (isHigh) {
      closePair();
      highHalf_ = unit;
    } else {
      addCodePoint(unit);
    }
    skipped_ = group().bytesAfterUnicode;
  }

  static constexpr std::size_t deepest = 256;
  RichTextTokens tokens_;
  std::vector<Group> groups_ = {Group{}};
  std::vector<std::optional<RichText::Colour>> colours_;
  std::optional<RichText::Colour> colour_;
  CodePage codePage_ = CodePage::windowsLatin;
  std::uint32_t highHalf_ = 0;
  int skipped_ = 0;  ///< substitute characters still to be skipped
  RichText result_;
  std::string pending_;
  Attributes pendingAttributes_;
};

}  // namespace

RichText parseRichTextFormat(std::string_view bytes) {
  if (!bytes.starts_with("{\\rtf")) throw Exception("not rich text format");
  return Reader(bytes).read();
}

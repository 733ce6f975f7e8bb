// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Text with attributes: characters, and runs that cover all of them.
class RichText {
 public:
  enum class Alignment { natural, centre, right, justified };

  struct Colour {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    bool operator==(const Colour&) const = default;
  };

  struct Attributes {
    bool bold = false;
    bool italic = false;
    bool underline = false;
    double size = 0;                              ///< in points; 0: the default
    std::optional<Colour> colour = std::nullopt;  ///< empty: the default
    Alignment alignment = Alignment::natural;     ///< of the paragraph
    double indent = 0;                            ///< of the paragraph, in points
    double spaceAfter = 0;                        ///< of the paragraph, in points
    bool operator==(const Attributes&) const = default;
  };

  struct Run {
    std::size_t length = 0;  ///< in bytes
    Attributes attributes;
    bool operator==(const Run&) const = default;
  };

  RichText() = default;
  /// Creates plain text with default attributes.
  explicit RichText(std::string_view plain) { append(plain, {}); }

  /// The characters; paragraphs end with a line feed.
  [[nodiscard]] const std::string& string() const { return text_; }
  /// Neighbouring runs differ.
  [[nodiscard]] const std::vector<Run>& runs() const { return runs_; }

  void append(std::string_view text, const Attributes& attributes);

  /// Replaces every occurrence in the current text. A replacement has the attributes of the first character replaced.
  /// Returns false when there is no occurrence.
  bool replaceOccurrences(std::string_view what, std::string_view with);

  bool operator==(const RichText&) const = default;

 private:
  std::string text_;
  std::vector<Run> runs_;
};

/// Reads rich text format: bold, italic, underline, sizes, colours, and paragraphs with their alignment, indent and
/// space after. Characters are Unicode (\u), named, or bytes of the Windows (1252) or Mac Roman encoding; in a file
/// that declares any other, bytes from 0x80 up become U+FFFD. Other destinations than text are left out, other
/// formatting is passed over. The text is UTF-8 and holds no control characters but tabs and line feeds.
///
/// Throws Exception when the bytes are no rich text format, end early or nest too deeply.
[[nodiscard]] RichText parseRichTextFormat(std::string_view bytes);

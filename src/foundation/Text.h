// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Texts are UTF-8 in std::string throughout. Other encodings are decoded on input.

/// Whether the bytes are well-formed UTF-8 (no overlong forms, no surrogates, nothing beyond U+10FFFF).
[[nodiscard]] bool isValidUtf8(std::string_view bytes);

/// Returns the bytes as text, or nothing when they are not well-formed UTF-8.
[[nodiscard]] std::optional<std::string> decodeUtf8(std::string_view bytes);

/// Text from bytes of unknown encoding: UTF-16 when a byte-order mark or the positions of zero bytes say so, else
/// UTF-8. Malformed sequences become U+FFFD; `lossless` is false if there were any.
struct DecodedText {
  std::string text;
  bool lossless = true;
};
[[nodiscard]] DecodedText decodeTextFile(std::string_view bytes);

/// Appends one code point as UTF-8, or U+FFFD for an invalid one.
void appendUtf8(std::string& text, std::uint32_t codePoint);

/// Returns `text` with every occurrence of `what` replaced; unchanged when `what` is empty.
[[nodiscard]] std::string replacingOccurrences(std::string_view text, std::string_view what, std::string_view with);

/// The decimal number at the start of the text, after white space and one sign; 0 when there is none. Saturates at the
/// ends of the range.
[[nodiscard]] std::int64_t integerValue(std::string_view text);

/// The text without its first `count` characters; nothing when it has fewer.
[[nodiscard]] std::optional<std::string_view> withoutFirstCharacters(std::string_view text, std::size_t count);

/// Returns the text without white space and line ends at both ends.
[[nodiscard]] std::string_view trimmed(std::string_view text);

[[nodiscard]] std::vector<std::string_view> split(std::string_view text, char separator);

/// Compares without regard to the case of ASCII letters.
[[nodiscard]] bool equalIgnoringCase(std::string_view a, std::string_view b);

/// Returns the text as one line that is safe to print on a terminal: control characters, and bytes that are not UTF-8,
/// become \n, \t or \xNN.
[[nodiscard]] std::string onOneLine(std::string_view text);

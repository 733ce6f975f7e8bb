// SPDX-License-Identifier: Apache-2.0

#include "foundation/Text.h"

#include <algorithm>
#include <limits>

namespace {

constexpr std::uint32_t replacementCharacter = 0xFFFD;

bool isContinuation(unsigned char byte) { return (byte & 0xC0U) == 0x80U; }

/// Returns the length of the well-formed sequence at the start of `bytes`, 0 when it is malformed.
std::size_t sequenceLength(std::string_view bytes) {
  const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned char lead = at(0);
  if (lead < 0x80) return 1;
  std::size_t length = 0;
  unsigned char lowest = 0x80;
  unsigned char highest = 0xBF;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    if (lead == 0xE0) lowest = 0xA0;
    if (lead == 0xED) highest = 0x9F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    if (lead == 0xF0) lowest = 0x90;
    if (lead == 0xF4) highest = 0x8F;
  }
  if (length == 0 || bytes.size() < length) return 0;
  if (at(1) < lowest || at(1) > highest) return 0;
  for (std::size_t i = 2; i < length; ++i) {
    if (!isContinuation(at(i))) return 0;
  }
  return length;
}

DecodedText decodeUtf16(std::string_view bytes, bool bigEndian) {
  DecodedText decoded;
  const auto unit = [&](std::size_t i) -> std::uint32_t {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    return bigEndian ? (static_cast<std::uint32_t>(first) << 8U) | second
                     : (static_cast<std::uint32_t>(second) << 8U) | first;
  };
  std::size_t i = 0;
  while (i + 1 < bytes.size()) {
    const std::uint32_t high = unit(i);
    i += 2;
    if (high < 0xD800 || high > 0xDFFF) {
      appendUtf8(decoded.text, high);
      continue;
    }
    const std::uint32_t low = i + 1 < bytes.size() ? unit(i) : 0;
    if (high <= 0xDBFF && low >= 0xDC00 && low <= 0xDFFF) {
      appendUtf8(decoded.text, 0x10000 + ((high - 0xD800) << 10U) + (low - 0xDC00));
      i += 2;
    } else {
      appendUtf8(decoded.text, replacementCharacter);
      decoded.lossless = false;
    }
  }
  if (i < bytes.size()) decoded.lossless = false;
  return decoded;
}

}  // namespace

bool isValidUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t length = sequenceLength(bytes);
    if (length == 0) return false;
    bytes.remove_prefix(length);
  }
  return true;
}

std::optional<std::string> decodeUtf8(std::string_view bytes) {
  if (!isValidUtf8(bytes)) return std::nullopt;
  return std::string(bytes);
}

DecodedText decodeTextFile(std::string_view bytes) {
  if (bytes.starts_with("\xFF\xFE")) return decodeUtf16(bytes.substr(2), /*bigEndian=*/false);
  if (bytes.starts_with("\xFE\xFF")) return decodeUtf16(bytes.substr(2), /*bigEndian=*/true);
  if (bytes.size() >= 2 && bytes.size() % 2 == 0 && (bytes[0] == '\0') != (bytes[1] == '\0')) {
    return decodeUtf16(bytes, /*bigEndian=*/bytes[0] == '\0');
  }
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);

  DecodedText decoded;
  decoded.text.reserve(bytes.size());
  while (!bytes.empty()) {
    const std::size_t length = sequenceLength(bytes);
    if (length == 0) {
      appendUtf8(decoded.text, replacementCharacter);
      decoded.lossless = false;
      bytes.remove_prefix(1);
    } else {
      decoded.text.append(bytes.substr(0, length));
      bytes.remove_prefix(length);
    }
  }
  return decoded;
}

void appendUtf8(std::string& text, std::uint32_t codePoint) {
  if (codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF)) codePoint = replacementCharacter;
  const auto append = [&](std::uint32_t byte) { text.push_back(static_cast<char>(byte)); };
  if (codePoint < 0x80) {
    append(codePoint);
  } else if (codePoint < 0x800) {
    append(0xC0U | (codePoint >> 6U));
    append(0x80U | (codePoint & 0x3FU));
  } else if (codePoint < 0x10000) {
    append(0xE0U | (codePoint >> 12U));
    append(0x80U | ((codePoint >> 6U) & 0x3FU));
    append(0x80U | (codePoint & 0x3FU));
  } else {
    append(0xF0U | (codePoint >> 18U));
    append(0x80U | ((codePoint >> 12U) & 0x3FU));
    append(0x80U | ((codePoint >> 6U) & 0x3FU));
    append(0x80U | (codePoint & 0x3FU));
  }
}

std::string replacingOccurrences(std::string_view text, std::string_view what, std::string_view with) {
  std::string result;
  if (!what.empty()) {
    for (std::size_t found = text.find(what); found != std::string_view::npos; found = text.find(what)) {
      result.append(text.substr(0, found)).append(with);
      text.remove_prefix(found + what.size());
    }
  }
  return result.append(text);
}

std::int64_t integerValue(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || (text[i] >= '\t' && text[i] <= '\r'))) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) negative = text[i++] == '-';
  constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
  std::int64_t value = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    const std::int64_t digit = text[i] - '0';
    if (value > (largest - digit) / 10) return negative ? std::numeric_limits<std::int64_t>::min() : largest;
    value = value * 10 + digit;
  }
  return negative ? -value : value;
}

std::optional<std::string_view> withoutFirstCharacters(std::string_view text, std::size_t count) {
  const auto continues = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; };
  for (; count > 0; --count) {
    if (text.empty()) return std::nullopt;
    do text.remove_prefix(1);
    while (!text.empty() && continues(text.front()));
  }
  return text;
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view white = " \t\n\v\f\r";
  const std::size_t first = text.find_first_not_of(white);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(white) - first + 1);
}

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  for (std::size_t end = text.find(separator); end != std::string_view::npos; end = text.find(separator)) {
    pieces.push_back(text.substr(0, end));
    text.remove_prefix(end + 1);
  }
  pieces.push_back(text);
  return pieces;
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::ranges::equal(a, b, [&](char x, char y) { return lower(x) == lower(y); });
}

std::string onOneLine(std::string_view text) {
  constexpr std::string_view hex = "0123456789abcdef";
  std::string line;
  line.reserve(text.size());
  while (!text.empty()) {
    const auto byte = static_cast<unsigned char>(text[0]);
    const std::size_t length = sequenceLength(text);
    const bool isC1Control = length == 2 && byte == 0xC2 && static_cast<unsigned char>(text[1]) < 0xA0;
    if (text[0] == '\n') {
      line += "\\n";
    } else if (text[0] == '\t') {
      line += "\\t";
    } else if (length == 0 || byte < 0x20 || byte == 0x7F || isC1Control) {
      for (const char c : text.substr(0, isC1Control ? 2 : 1)) {
        line += "\\x";
        line += hex[static_cast<unsigned char>(c) >> 4U];
        line += hex[static_cast<unsigned char>(c) & 0xFU];
      }
    } else {
      line += text.substr(0, length);
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return line;
}

// SPDX-License-Identifier: Apache-2.0

#include "foundation/RichTextTokens.h"

#include <algorithm>
#include <limits>

#include "foundation/Text.h"

RichTextToken RichTextTokens::next() {
  while (next_ < bytes_.size()) {
    const char c = bytes_[next_++];
    if (c == '{') return {.kind = RichTextToken::Kind::openGroup};
    if (c == '}') return {.kind = RichTextToken::Kind::closeGroup};
    const bool isControl = c == '\\' && next_ < bytes_.size();
    if (isControl) return readControl();
    const bool isCharacter = c != '\\' && c != '\r' && c != '\n';
    if (isCharacter) return {.kind = RichTextToken::Kind::byte, .byte = static_cast<std::uint8_t>(c)};
  }
  return {};
}

void RichTextTokens::skip(std::size_t bytes) { next_ += std::min(bytes, bytes_.size() - next_); }

RichTextToken RichTextTokens::readControl() {
  const char c = bytes_[next_];
  const bool isWord = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  if (isWord) return readWord();
  ++next_;
  if (c == '\'') return {.kind = RichTextToken::Kind::byte, .byte = readHexadecimalByte()};
  const bool standsForItself = c == '\\' || c == '{' || c == '}';
  return {.kind = standsForItself ? RichTextToken::Kind::byte : RichTextToken::Kind::symbol,
          .byte = static_cast<std::uint8_t>(c)};
}

std::uint8_t RichTextTokens::readHexadecimalByte() {
  unsigned value = 0;
  for (int i = 0; i < 2 && next_ < bytes_.size(); ++i) {
    const char c = bytes_[next_];
    unsigned digit = 16;
    if (c >= '0' && c <= '9') digit = static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f') digit = static_cast<unsigned>(c - 'a') + 10;
    if (c >= 'A' && c <= 'F') digit = static_cast<unsigned>(c - 'A') + 10;
    if (digit == 16) break;
    value = value * 16 + digit;
    ++next_;
  }
  return static_cast<std::uint8_t>(value);
}

RichTextToken RichTextTokens::readWord() {
  const std::size_t start = next_;
  while (next_ < bytes_.size() && ((bytes_[next_] | 0x20) >= 'a' && (bytes_[next_] | 0x20) <= 'z')) ++next_;
  RichTextToken token{.kind = RichTextToken::Kind::word, .word = bytes_.substr(start, next_ - start)};
  token.number = readNumber();
  if (next_ < bytes_.size() && bytes_[next_] == ' ') ++next_;
  return token;
}

/// A hyphen without digits is text.
std::optional<std::int64_t> RichTextTokens::readNumber() {
  const auto isDigit = [&](std::size_t at) { return at < bytes_.size() && bytes_[at] >= '0' && bytes_[at] <= '9'; };
  const std::size_t start = next_;
  std::size_t end = start;
  if (end < bytes_.size() && bytes_[end] == '-') ++end;
  if (!isDigit(end)) return std::nullopt;
  while (isDigit(end)) ++end;
  next_ = end;
  constexpr std::int64_t largest = std::numeric_limits<std::int32_t>::max();
  return std::clamp(integerValue(bytes_.substr(start, end - start)), -largest, largest);
}

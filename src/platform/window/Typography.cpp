// SPDX-License-Identifier: Apache-2.0

#include "platform/window/Typography.h"

namespace {

constexpr std::string_view noBreakSpace = "\xC2\xA0";
constexpr std::size_t mostDigits = 2;

bool isDigit(char character) { return character >= '0' && character <= '9'; }
bool isInWord(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
         static_cast<unsigned char>(character) >= 0x80;
}

}  // namespace

std::string withNumbersKeptToWords(std::string_view text) {
  std::string kept;
  for (std::size_t i = 0; i < text.size(); ++i) {
    std::size_t digits = 0;
    if (text[i] == ' ' && i > 0 && isInWord(text[i - 1])) {
      while (i + 1 + digits < text.size() && isDigit(text[i + 1 + digits])) ++digits;
    }
    const bool isKept = digits > 0 && digits <= mostDigits;
    kept += isKept ? noBreakSpace : text.substr(i, 1);
  }
  return kept;
}

// SPDX-License-Identifier: Apache-2.0

#include <cstddef>
#include <cstdint>

#include "foundation/Exception.h"
#include "foundation/RichText.h"
#include "foundation/Text.h"

namespace {

/// Whether the runs cover the text.
bool isWhole(const RichText& text) {
  std::size_t covered = 0;
  for (const RichText::Run& run : text.runs()) covered += run.length;
  return covered == text.string().size() && isValidUtf8(text.string());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    RichText text = parseRichTextFormat({reinterpret_cast<const char*>(data), size});
    // A byte gives a character of three bytes at the most.
    if (!isWhole(text) || text.string().size() > 3 * size) __builtin_trap();
    for (const char c : text.string()) {
      if (c >= 0 && c < ' ' && c != '\n' && c != '\t') __builtin_trap();
    }
    const bool isThere = text.string().find("ab") != std::string::npos;
    if (text.replaceOccurrences("ab", "é") != isThere || !isWhole(text)) __builtin_trap();
    if (text.string().find("ab") != std::string::npos) __builtin_trap();
  } catch (const Exception&) {
    // No rich text format.
  }
  return 0;
}

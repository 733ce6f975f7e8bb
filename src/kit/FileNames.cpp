// SPDX-License-Identifier: Apache-2.0

#include "kit/FileNames.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "foundation/Text.h"
#include "kit/ComposedCharacters.h"

namespace {

using Characters = std::vector<std::uint32_t>;

/// Of well-formed UTF-8.
Characters charactersOf(std::string_view text) {
  Characters characters;
  for (const char byte : text) {
    const auto value = static_cast<unsigned char>(byte);
    if ((value & 0xC0U) == 0x80U) {
      characters.back() = (characters.back() << 6U) | (value & 0x3FU);
    } else {
      characters.push_back(value < 0x80   ? value
                           : value < 0xE0 ? value & 0x1FU
                           : value < 0xF0 ? value & 0x0FU
                                          : value & 0x07U);
    }
  }
  return characters;
}

using Compositions = std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t>;

const Compositions& compositions() {
  static const Compositions all = [] {
    Compositions made;
    for (const auto& [mark, pairs] : composingMarks) {
      const Characters characters = charactersOf(pairs);
      for (std::size_t i = 0; i + 1 < characters.size(); i += 2) made[{characters[i], mark}] = characters[i + 1];
    }
    return made;
  }();
  return all;
}

/// Korean syllables are made of two or three letters by a rule.
std::optional<std::uint32_t> composedSyllable(std::uint32_t first, std::uint32_t second) {
  constexpr std::uint32_t syllables = 0xAC00;
  constexpr std::uint32_t leads = 0x1100;
  constexpr std::uint32_t vowels = 0x1161;
  constexpr std::uint32_t tails = 0x11A7;
  constexpr std::uint32_t leadCount = 19;
  constexpr std::uint32_t vowelCount = 21;
  constexpr std::uint32_t tailCount = 28;
  if (first - leads < leadCount && second - vowels < vowelCount) {
    return syllables + ((first - leads) * vowelCount + second - vowels) * tailCount;
  }
  const bool isOpen = first - syllables < leadCount * vowelCount * tailCount && (first - syllables) % tailCount == 0;
  if (isOpen && second > tails && second - tails < tailCount) return first + second - tails;
  return std::nullopt;
}

Characters composed(const Characters& characters) {
  Characters result;
  for (const std::uint32_t character : characters) {
    if (!result.empty()) {
      const auto found = compositions().find({result.back(), character});
      const auto syllable = composedSyllable(result.back(), character);
      if (found != compositions().end() || syllable) {
        result.back() = syllable ? *syllable : found->second;
        continue;
      }
    }
    result.push_back(character);
  }
  return result;
}

std::uint32_t smallLetter(std::uint32_t c) {
  struct Range {
    std::uint32_t first;
    std::uint32_t last;
    std::uint32_t distance;
  };
  constexpr std::array<Range, 8> ranges = {{{'A', 'Z', 32},
                                            {0xC0, 0xD6, 32},
                                            {0xD8, 0xDE, 32},
                                            {0x391, 0x3AB, 32},
                                            {0x388, 0x38A, 37},
                                            {0x400, 0x40F, 80},
                                            {0x410, 0x42F, 32},
                                            {0x531, 0x556, 48}}};
  for (const auto& [first, last, distance] : ranges) {
    if (c >= first && c <= last) return c + distance;
  }
  // Where a small letter follows its capital one.
  const bool isOddCapital = (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E);
  const bool isEvenCapital = (c >= 0x100 && c <= 0x137) || (c >= 0x14A && c <= 0x177) || (c >= 0x460 && c <= 0x481) ||
                             (c >= 0x48A && c <= 0x4BF) || (c >= 0x4D0 && c <= 0x52F) || (c >= 0x1E00 && c <= 0x1E95) ||
                             (c >= 0x1EA0 && c <= 0x1EFF);
  return c + ((isOddCapital && c % 2 == 1) || (isEvenCapital && c % 2 == 0) ? 1 : 0);
}

std::string textOf(const Characters& characters) {
  std::string text;
  for (const std::uint32_t character : characters) appendUtf8(text, character);
  return text;
}

}  // namespace

std::string composedName(std::string_view name) {
  return isValidUtf8(name) ? textOf(composed(charactersOf(name))) : std::string(name);
}

std::string nameOnVolume(std::string_view name) {
  if (!isValidUtf8(name)) return std::string(name);
  Characters characters = composed(charactersOf(name));
  std::ranges::transform(characters, characters.begin(), smallLetter);
  return textOf(characters);
}

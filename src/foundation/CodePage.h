#pragma once

#include <cstdint>

/// An encoding with one byte to a character, of those that agree with ASCII below 0x80.
enum class CodePage { windowsLatin, macRoman, unknown };

/// The code page of that number; 1252 and 10000 are known.
[[nodiscard]] CodePage codePageOfNumber(std::int64_t number);

/// U+FFFD for a byte that stands for nothing, which in an unknown code page are all from 0x80 up.
[[nodiscard]] std::uint32_t codePointOf(std::uint8_t byte, CodePage codePage);

// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>

/// An encoding with one byte per character that agrees with ASCII below 0x80.
enum class CodePage { windowsLatin, macRoman, unknown };

/// Code page with this number. Known are 1252 and 10000.
[[nodiscard]] CodePage codePageOfNumber(std::int64_t number);

/// Returns U+FFFD for an unassigned byte. In an unknown code page these are all from 0x80 up.
[[nodiscard]] std::uint32_t codePointOf(std::uint8_t byte, CodePage codePage);

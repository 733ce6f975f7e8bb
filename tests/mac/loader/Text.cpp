// SPDX-License-Identifier: Apache-2.0

// Characters, locales and standard streams.
#include <array>
#include <cctype>
#include <cerrno>
#include <clocale>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <cwctype>

#include "Names.h"

namespace {

/// The kinds of a character, as a Mac has them.
std::uint32_t kindsOf(int character) {
  if (character < 0 || character > 127) return 0;
  std::uint32_t kinds = 0;
  if (std::isalpha(character) != 0) kinds |= 0x100;
  if (std::iscntrl(character) != 0) kinds |= 0x200;
  if (std::isdigit(character) != 0) kinds |= 0x400;
  if (std::isgraph(character) != 0) kinds |= 0x800;
  if (std::islower(character) != 0) kinds |= 0x1000;
  if (std::ispunct(character) != 0) kinds |= 0x2000;
  if (std::isspace(character) != 0) kinds |= 0x4000;
  if (std::isupper(character) != 0) kinds |= 0x8000;
  if (std::isxdigit(character) != 0) kinds |= 0x10000;
  if (std::isblank(character) != 0) kinds |= 0x20000;
  if (std::isprint(character) != 0) kinds |= 0x40000;
  return kinds;
}

int maskRune(int character, unsigned long kinds) { return (kindsOf(character) & kinds) != 0 ? 1 : 0; }

/// The table that a Mac's functions on characters read by themselves: the kinds of each follow 60 bytes of other
/// things.
const void* characterTable() {
  static std::array<char, 16384> table{};
  for (int character = 0; character < 128; ++character) {
    const std::uint32_t kinds = kindsOf(character);
    std::memcpy(table.data() + 60 + 4 * character, &kinds, sizeof(kinds));
  }
  return table.data();
}

std::size_t longestCharacter(void* /*locale*/) { return 1; }
void* plainLocale(int /*mask*/, const char* /*name*/, void* /*base*/) {
  static int locale = 0;
  return &locale;
}
void* useLocale(void* /*locale*/) { return plainLocale(0, nullptr, nullptr); }
int freeLocale(void* /*locale*/) { return 0; }
lconv* conventions(void* /*locale*/) { return std::localeconv(); }

int printTo(char* text, std::size_t size, void* /*locale*/, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(text, size, format, arguments);
  va_end(arguments);
  return length;
}

int printNew(char** text, void* /*locale*/, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int length = ::vasprintf(text, format, arguments);
  va_end(arguments);
  return length;
}

int scan(const char* text, void* /*locale*/, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int count = std::vsscanf(text, format, arguments);
  va_end(arguments);
  return count;
}

/// Patterns match nothing: tests are chosen without them.
int noPattern() { return 1; }
int anyPattern() { return 0; }

void fillWithPattern(char* bytes, const char* pattern, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) bytes[i] = pattern[i % 16];
}

__int128 divide(__int128 dividend, __int128 divisor) { return dividend / divisor; }

int clockTime(int clock, timespec* time) {
  constexpr int realTimeOnMac = 0;
  return ::clock_gettime(clock == realTimeOnMac ? CLOCK_REALTIME : CLOCK_MONOTONIC, time);
}

}  // namespace

std::vector<Name> namesOfText() {
  static std::uint64_t guard = 0x5af3c1d29b8e7604;
  return {function("___maskrune", &maskRune),
          function("___maskrune_l", &maskRune),
          function("___tolower", static_cast<int (*)(int)>(&std::tolower)),
          function("___toupper", static_cast<int (*)(int)>(&std::toupper)),
          function("___tolower_l", static_cast<int (*)(int)>(&std::tolower)),
          function("___toupper_l", static_cast<int (*)(int)>(&std::toupper)),
          {"__DefaultRuneLocale", characterTable()},
          function("____mb_cur_max_l", &longestCharacter),
          function("____tolower_l", static_cast<int (*)(int)>(&std::tolower)),
          function("____toupper_l", static_cast<int (*)(int)>(&std::toupper)),
          function("_newlocale", &plainLocale),
          function("_uselocale", &useLocale),
          function("_freelocale", &freeLocale),
          function("_localeconv_l", &conventions),
          function("_snprintf_l", &printTo),
          function("_asprintf_l", &printNew),
          function("_sscanf_l", &scan),
          function("_clock_gettime", &clockTime),
          function("_regcomp", &anyPattern),
          function("_regexec", &noPattern),
          function("_regfree", &anyPattern),
          function("_memset_pattern16", &fillWithPattern),
          function("___divti3", &divide),
          function("___bzero", &::bzero),
          {"___stdinp", &stdin},
          {"___stdoutp", &stdout},
          {"___stderrp", &stderr},
          {"___stack_chk_guard", &guard}};
}

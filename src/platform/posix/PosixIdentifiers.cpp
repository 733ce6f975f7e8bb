// SPDX-License-Identifier: Apache-2.0

#include "platform/posix/PosixIdentifiers.h"

#include <unistd.h>

#include <array>
#include <cstdlib>

#ifdef __APPLE__
#include <sys/random.h>
#endif

std::string PosixIdentifiers::makeUuid() {
  std::array<unsigned char, 16> bytes{};
  // Cannot fail for at most 256 bytes. Never return an identifier that is not random.
  if (::getentropy(bytes.data(), bytes.size()) != 0) std::abort();
  bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0FU) | 0x40U);  // version 4: random
  bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3FU) | 0x80U);  // the usual variant
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += "0123456789ABCDEF"[bytes[i] >> 4U];
    text += "0123456789ABCDEF"[bytes[i] & 0xFU];
  }
  return text;
}

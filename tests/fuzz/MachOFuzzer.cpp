// SPDX-License-Identifier: Apache-2.0

#include <cstddef>
#include <cstdint>

#include "foundation/MachO.h"

/// Whatever the header says, there is at most one name for every few bytes of it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const auto names = architecturesOfMachO(bytes);
  const auto parts = partsOfMachO(bytes);
  if (names.has_value() != parts.has_value() || (names && names->size() != parts->size())) __builtin_trap();
  if (!names) return 0;
  if (names->empty() || names->size() * 8 > size) __builtin_trap();
  for (const std::string& name : *names) {
    if (name.empty()) __builtin_trap();
  }
  return 0;
}

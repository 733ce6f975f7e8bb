// SPDX-License-Identifier: Apache-2.0

#include <cstddef>
#include <cstdint>

#include "tool/MachO.h"

/// Whatever the header says, there is at most one name for every few bytes of it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto names = architecturesOfMachO({reinterpret_cast<const char*>(data), size});
  if (!names) return 0;
  if (names->empty() || names->size() * 8 > size) __builtin_trap();
  for (const std::string& name : *names) {
    if (name.empty()) __builtin_trap();
  }
  return 0;
}

// SPDX-License-Identifier: Apache-2.0

#include <cstddef>
#include <cstdint>

#include "foundation/StringsTable.h"
#include "foundation/Text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const StringsTable table = parseStringsTable({reinterpret_cast<const char*>(data), size});
  for (const auto& [key, text] : table.texts) {
    if (!isValidUtf8(key) || !isValidUtf8(text)) __builtin_trap();
  }
  return 0;
}

// SPDX-License-Identifier: Apache-2.0

#include <cstddef>
#include <cstdint>

#include "foundation/Format.h"
#include "foundation/Text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view format(reinterpret_cast<const char*>(data), size);
  const std::string result = formatted(format, "one", "two");
  // A placeholder is two bytes or more and gives three at the most.
  if (result.size() > 2 * size) __builtin_trap();
  if (isValidUtf8(format) && !isValidUtf8(result)) __builtin_trap();
  return 0;
}

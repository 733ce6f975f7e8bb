// SPDX-License-Identifier: Apache-2.0

#include <cstddef>
#include <cstdint>

#include "foundation/Text.h"
#include "hosts/PathsFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const PathsFile file = parsePathsFile({reinterpret_cast<const char*>(data), size});
  const std::size_t found = file.appFolder.value_or("").size() + file.plugInsFolder.value_or("").size();
  if (found > size || (file.plugInsFolder && !file.namesPlugInsFolder)) __builtin_trap();
  if (!isValidUtf8(file.appFolder.value_or("")) || !isValidUtf8(file.plugInsFolder.value_or(""))) __builtin_trap();
  return 0;
}

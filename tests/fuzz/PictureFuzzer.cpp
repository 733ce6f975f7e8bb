// SPDX-License-Identifier: Apache-2.0

#include <cstddef>
#include <cstdint>

#include "kit/PictureFile.h"

/// Whatever the file says, a picture without damage has a size and a format.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const PictureFile file = inspectPicture({reinterpret_cast<const char*>(data), size});
  const bool isPicture = !file.format.empty() && file.damage.empty();
  if (isPicture && (file.width == 0 || file.height == 0)) __builtin_trap();
  return 0;
}

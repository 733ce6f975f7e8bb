#include <cstddef>
#include <cstdint>

#include "platform/posix/PropertyList.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto value = readPropertyList({reinterpret_cast<const char*>(data), size});
  if (!value || value->isNone()) return 0;
  const auto text = writePropertyList(*value);
  if (!text) return 0;
  // What is written is read, and written again the same.
  const auto again = readPropertyList(*text);
  if (!again || *writePropertyList(*again) != *text) __builtin_trap();
  return 0;
}

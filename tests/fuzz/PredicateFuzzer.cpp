// SPDX-License-Identifier: Apache-2.0

#include <cstddef>
#include <cstdint>

#include "foundation/Exception.h"
#include "foundation/Predicate.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Value arguments[] = {Value("argument")};
  try {
    const Predicate predicate = Predicate::parse({reinterpret_cast<const char*>(data), size}, arguments);
    static_cast<void>(predicate.evaluate(Value("Adobe Photoshop CS6 Paths")));
  } catch (const Exception&) {
    // Not a predicate, or one over keys that a text does not have.
  }
  return 0;
}

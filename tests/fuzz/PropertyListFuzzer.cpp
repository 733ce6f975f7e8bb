// SPDX-License-Identifier: Apache-2.0

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "platform/propertylist/PropertyList.h"

namespace {

/// Whether writing loses nothing of the value: dates lose fractions of a second, and not a number equals nothing.
bool isExact(const Value& value) {
  if (value.isNone() || value.as<Value::Date>() != nullptr) return false;
  if (const auto* real = value.as<double>()) return std::isfinite(*real);
  if (const auto* array = value.as<Value::Array>()) {
    for (const Value& item : *array) {
      if (!isExact(item)) return false;
    }
  }
  if (const auto* dictionary = value.as<Value::Dictionary>()) {
    for (const auto& [key, item] : *dictionary) {
      if (!isExact(item)) return false;
    }
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto value = readPropertyList({reinterpret_cast<const char*>(data), size});
  if (!value) return 0;
  const auto text = writePropertyList(*value);
  if (!text || !isExact(*value)) return 0;
  const auto again = readPropertyList(*text);
  if (!again || !(*again == *value)) __builtin_trap();
  return 0;
}

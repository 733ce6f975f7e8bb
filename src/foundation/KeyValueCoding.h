// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

#include "foundation/Exception.h"
#include "foundation/Value.h"

/// Thrown for an unknown key.
class UnknownKey : public Exception {
 public:
  explicit UnknownKey(std::string_view key) : Exception("no value for the key " + std::string(key)) {}
};

/// An object whose properties can be read by name.
class KeyValueCoding {
 public:
  KeyValueCoding() = default;
  KeyValueCoding(const KeyValueCoding&) = delete;
  KeyValueCoding& operator=(const KeyValueCoding&) = delete;
  virtual ~KeyValueCoding() = default;

  /// Returns the value of the property. Throws UnknownKey when the object has no property of this name.
  [[nodiscard]] virtual Value valueForKey(std::string_view key) const = 0;
};

#pragma once

#include <string>
#include <string_view>

#include "foundation/Exception.h"
#include "foundation/Value.h"

/// Raised for a key that the object does not have.
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

  /// The value of the property; throws UnknownKey when there is none of that name.
  [[nodiscard]] virtual Value valueForKey(std::string_view key) const = 0;
};

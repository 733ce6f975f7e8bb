#pragma once

#include <string>

/// Unique identifiers.
class Identifiers {
 public:
  Identifiers() = default;
  Identifiers(const Identifiers&) = delete;
  Identifiers& operator=(const Identifiers&) = delete;
  virtual ~Identifiers() = default;

  /// A new random UUID from the system's source of randomness, in its canonical form: 36 characters, upper-case
  /// hexadecimal digits in groups of 8-4-4-4-12.
  [[nodiscard]] virtual std::string makeUuid() = 0;
};

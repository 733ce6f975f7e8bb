// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

/// Unique identifiers.
class Identifiers {
 public:
  Identifiers() = default;
  Identifiers(const Identifiers&) = delete;
  Identifiers& operator=(const Identifiers&) = delete;
  virtual ~Identifiers() = default;

  /// A new UUID, random from the system's own source, as text in capitals.
  [[nodiscard]] virtual std::string makeUuid() = 0;
};

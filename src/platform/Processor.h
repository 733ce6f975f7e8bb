// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>

/// Processor identification.
class Processor {
 public:
  struct Registers {
    std::uint32_t eax = 0;
    std::uint32_t ebx = 0;
    std::uint32_t ecx = 0;
    std::uint32_t edx = 0;
  };

  Processor() = default;
  Processor(const Processor&) = delete;
  Processor& operator=(const Processor&) = delete;
  virtual ~Processor() = default;

  /// The identification leaf; all zero on a processor that has no such thing.
  [[nodiscard]] virtual Registers identification(std::uint32_t leaf, std::uint32_t subLeaf) const = 0;

  /// Extended control register 0. To be read only when leaf 1 says that the system uses it (ECX bit 27).
  [[nodiscard]] virtual std::uint64_t extendedControlRegister() const = 0;
};

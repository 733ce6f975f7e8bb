// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/Processor.h"

/// Reads the identification of the processor, if it has the CPUID instruction.
class CpuidProcessor : public Processor {
 public:
  [[nodiscard]] Registers identification(std::uint32_t leaf, std::uint32_t subLeaf) const override;
  [[nodiscard]] std::uint64_t extendedControlRegister() const override;
};

#pragma once

#include "platform/Processor.h"

/// Asks the processor itself, where it is one that can be asked.
class CpuidProcessor : public Processor {
 public:
  [[nodiscard]] Registers identification(std::uint32_t leaf, std::uint32_t subLeaf) const override;
  [[nodiscard]] std::uint64_t extendedControlRegister() const override;
};

// SPDX-License-Identifier: Apache-2.0

#include "platform/posix/CpuidProcessor.h"

#if defined(__x86_64__) || defined(__i386__)

#include <cpuid.h>

Processor::Registers CpuidProcessor::identification(std::uint32_t leaf, std::uint32_t subLeaf) const {
  Registers registers;
  __cpuid_count(leaf, subLeaf, registers.eax, registers.ebx, registers.ecx, registers.edx);
  return registers;
}

std::uint64_t CpuidProcessor::extendedControlRegister() const {
  std::uint32_t low = 0;
  std::uint32_t high = 0;
  __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
  return (std::uint64_t{high} << 32U) | low;
}

#else

Processor::Registers CpuidProcessor::identification(std::uint32_t /*leaf*/, std::uint32_t /*subLeaf*/) const {
  return {};
}
std::uint64_t CpuidProcessor::extendedControlRegister() const { return 0; }

#endif

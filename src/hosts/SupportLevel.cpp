// SPDX-License-Identifier: Apache-2.0

#include "hosts/SupportLevel.h"

namespace {

bool hasBit(std::uint32_t value, unsigned bit) { return ((value >> bit) & 1U) != 0; }

}  // namespace

std::int32_t SupportLevel(const Processor& processor) {
  Processor::Registers features = processor.identification(1, 0);
  bool avxEnabled = false;
  bool avx512Enabled = false;
  if (hasBit(features.ecx, 27) && hasBit(features.ecx, 28)) {
    const std::uint64_t saved = processor.extendedControlRegister();
    avxEnabled = (saved & 0x06U) == 0x06U;
    avx512Enabled = avxEnabled && (saved & 0xE6U) == 0xE6U;
  }

  const auto highestLeaf = static_cast<std::int32_t>(processor.identification(0, 0).eax);
  if (highestLeaf <= 0) features = {};
  if (highestLeaf >= 7) {
    const std::uint32_t extended = processor.identification(7, 0).ebx;
    if (avx512Enabled && hasBit(extended, 16)) return 8;
    if (avxEnabled && hasBit(extended, 5)) return 7;
  }
  if (avxEnabled && hasBit(features.ecx, 28)) return 6;
  if (hasBit(features.ecx, 20)) return 5;
  if (hasBit(features.ecx, 19)) return 4;
  if (hasBit(features.ecx, 0)) return 3;
  if (hasBit(features.edx, 26)) return 2;
  if (hasBit(features.edx, 25)) return 1;
  return 0;
}

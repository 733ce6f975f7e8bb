// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include "hosts/SupportLevel.h"
#include "platform/Processor.h"

namespace {

/// Has everything, if the system keeps the registers for it.
struct SomeProcessor : Processor {
  bool isKept = false;
  std::uint64_t keptState = 0;

  [[nodiscard]] Registers identification(std::uint32_t /*leaf*/, std::uint32_t /*subLeaf*/) const override {
    return {.eax = 7, .ebx = ~0U, .ecx = isKept ? ~0U : ~(1U << 27), .edx = ~0U};
  }
  [[nodiscard]] std::uint64_t extendedControlRegister() const override {
    EXPECT_TRUE(isKept) << "must not be read before the system is known to use it";
    return keptState;
  }
};

TEST(SupportLevel, IsTheHighestThatTheSystemCanUse) {
  SomeProcessor processor;
  EXPECT_EQ(SupportLevel(processor), 5);
  processor.isKept = true;
  const std::pair<std::uint64_t, int> cases[] = {{0x00, 5}, {0x02, 5}, {0xE0, 5}, {0x06, 7}, {0xE6, 8}};
  for (const auto& [state, level] : cases) {
    processor.keptState = state;
    EXPECT_EQ(SupportLevel(processor), level);
  }
}

}  // namespace

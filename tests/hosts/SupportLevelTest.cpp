#include <gtest/gtest.h>

#include "hosts/SupportLevel.h"
#include "platform/linux/LinuxProcessor.h"

namespace {

class SomeProcessor : public Processor {
 public:
  std::uint32_t highestLeaf = 7;
  Registers features;
  std::uint32_t extended = 0;
  std::uint64_t enabledState = 0;
  mutable int stateReads = 0;

  [[nodiscard]] Registers identification(std::uint32_t leaf, std::uint32_t /*subLeaf*/) const override {
    if (leaf == 0) return {.eax = highestLeaf};
    return leaf == 1 ? features : Registers{.ebx = extended};
  }
  [[nodiscard]] std::uint64_t extendedControlRegister() const override {
    ++stateReads;
    return enabledState;
  }
};

constexpr std::uint32_t bit(unsigned n) { return 1U << n; }

TEST(SupportLevel, IsTheHighestThatCanBeUsed) {
  SomeProcessor processor;
  EXPECT_EQ(SupportLevel(processor), 0);
  const auto adding = [&](std::uint32_t& where, unsigned n) {
    where |= bit(n);
    return SupportLevel(processor);
  };
  EXPECT_EQ(adding(processor.features.edx, 25), 1);
  EXPECT_EQ(adding(processor.features.edx, 26), 2);
  EXPECT_EQ(adding(processor.features.ecx, 0), 3);
  EXPECT_EQ(adding(processor.features.ecx, 19), 4);
  EXPECT_EQ(adding(processor.features.ecx, 20), 5);
  EXPECT_EQ(adding(processor.features.ecx, 28), 5);
  EXPECT_EQ(processor.stateReads, 0) << "the register must not be read before the system is known to use it";
  EXPECT_EQ(adding(processor.features.ecx, 27), 5);
  processor.enabledState = 0x06;
  EXPECT_EQ(SupportLevel(processor), 6);
  EXPECT_EQ(adding(processor.extended, 5), 7);
  EXPECT_EQ(adding(processor.extended, 16), 7);
  processor.enabledState = 0xE0;
  EXPECT_EQ(SupportLevel(processor), 5);
  processor.enabledState = 0xE6;
  EXPECT_EQ(SupportLevel(processor), 8);
  processor.highestLeaf = 6;
  EXPECT_EQ(SupportLevel(processor), 6);
  processor.highestLeaf = 0;
  EXPECT_EQ(SupportLevel(processor), 0);
}

TEST(SupportLevel, CanBeAskedOfThisProcessor) {
  const std::int32_t level = SupportLevel(LinuxProcessor());
#ifdef __x86_64__
  EXPECT_GE(level, 2) << "every 64-bit one has SSE2";
#endif
  EXPECT_LE(level, 8);
}

}  // namespace

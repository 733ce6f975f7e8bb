#include <gtest/gtest.h>

#include "hosts/SupportLevel.h"
#include "platform/linux/LinuxProcessor.h"

namespace {

struct SomeProcessor : Processor {
  std::uint32_t highestLeaf = 7;
  Registers features;
  std::uint32_t extended = 0;
  std::uint64_t enabledState = 0;
  mutable int stateReads = 0;

  [[nodiscard]] Registers identification(std::uint32_t leaf, std::uint32_t /*subLeaf*/) const override {
    if (leaf == 0) return {.eax = highestLeaf};
    return leaf == 1 ? features : Registers{.ebx = extended};
  }
  [[nodiscard]] std::uint64_t extendedControlRegister() const override { return ++stateReads, enabledState; }
};

TEST(SupportLevel, IsTheHighestThatCanBeUsed) {
  SomeProcessor processor;
  EXPECT_EQ(SupportLevel(processor), 0);
  const auto adding = [&](std::uint32_t& where, std::initializer_list<unsigned> bits) {
    std::string levels;
    for (const unsigned bit : bits) {
      where |= 1U << bit;
      levels += std::to_string(SupportLevel(processor));
    }
    return levels;
  };
  EXPECT_EQ(adding(processor.features.edx, {25, 26}), "12");
  EXPECT_EQ(adding(processor.features.ecx, {0, 19, 20, 28}), "3455");
  EXPECT_EQ(processor.stateReads, 0) << "the register must not be read before the system is known to use it";
  EXPECT_EQ(adding(processor.features.ecx, {27}), "5");
  processor.enabledState = 0x06;
  EXPECT_EQ(adding(processor.extended, {0, 5, 16}), "677");
  const std::tuple<std::uint64_t, std::uint32_t, int> cases[] = {
      {0xE0, 7, 5}, {0xE6, 7, 8}, {0xE6, 6, 6}, {0xE6, 0, 0}};
  for (const auto& [state, leaf, level] : cases) {
    processor.enabledState = state;
    processor.highestLeaf = leaf;
    EXPECT_EQ(SupportLevel(processor), level);
  }
  EXPECT_LE(SupportLevel(LinuxProcessor()), 8) << "can be asked of this processor";
}

}  // namespace

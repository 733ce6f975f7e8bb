// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include "foundation/KeyValueObserving.h"

namespace {

TEST(KeyValueObserving, ToleratesNestingAndChangesByObservers) {
  KeyValueObserving object;
  std::string told;
  KeyValueObserving::Observation second;
  const auto first = object.observe([&](std::string_view key, KeyValueObserving::Moment moment) {
    told += (moment == KeyValueObserving::Moment::willChange ? " will-" : " did-") + std::string(key);
    if (key == "inner" || second == nullptr) return;
    object.willChangeValueForKey("inner");
    second.reset();
  });
  second = object.observe([&](std::string_view, auto) { told += "!"; });
  object.willChangeValueForKey("outer");
  object.didChangeValueForKey("outer");
  EXPECT_EQ(told, " will-outer will-inner! did-outer");
}

}  // namespace

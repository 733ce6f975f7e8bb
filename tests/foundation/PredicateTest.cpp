// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <string>

#include "foundation/Predicate.h"

namespace {

TEST(Predicate, EvaluatesOperatorsByPrecedence) {
  const Value argument("a' OR SELF == 'b");
  const auto holds = [&](const char* predicate, const char* text) {
    return Predicate::parse(predicate, {&argument, 1}).evaluate(Value(text));
  };
  EXPECT_TRUE(holds("SELF contains 'Paths' AND SELF contains 'Adobe'", "Adobe Photoshop CS6 Paths"));
  EXPECT_FALSE(holds("SELF contains 'Paths' AND SELF contains 'Adobe'", "Adobe photoshop paths"));
  EXPECT_TRUE(holds("SELF == 'a' OR SELF == 'b' AND SELF == 'c'", "a")) << "AND is the stronger";
  EXPECT_FALSE(holds("(SELF == 'a' OR SELF == 'b') AND SELF == 'c'", "a"));
  EXPECT_TRUE(holds("NOT SELF LIKE \"*.txt\" && SELF != 'it\\'s'", "a.text"));
  EXPECT_FALSE(holds("(SELF LIKE %@)", "b")) << "an argument is a value";
  EXPECT_TRUE(holds("(SELF LIKE %@)", "a' OR SELF == 'b"));
}

TEST(Predicate, RejectsMalformedPredicates) {
  for (const std::string& text :
       std::vector<std::string>{"", "SELF", "SELF ==", "SELF == 'a", "(SELF == 'a'", "SELF == 'a')", "SELF ~ 'a'",
                                "SELF == 'a' SELF == 'b'", "SELF == %@", std::string(100000, '(')}) {
    EXPECT_THROW(Predicate::parse(text), Exception) << text.substr(0, 40);
  }
}

}  // namespace

// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "foundation/Predicate.h"

namespace {

TEST(Predicate, EvaluatesOperatorsByPrecedence) {
  const Value argument("a' OR SELF == 'b");
  const auto holds = [&](const char* predicate, const char* text) {
    return Predicate::parse(predicate, {&argument, 1}).evaluate(Value(text));
  };
  const std::tuple<const char*, const char*, bool> cases[] = {
      {"SELF contains 'Paths' AND SELF contains 'Adobe'", "Adobe Photoshop CS6 Paths", true},
      {"SELF contains 'Paths' AND SELF contains 'Adobe'", "Adobe photoshop paths", false},
      {"SELF == 'a' OR SELF == 'b' AND SELF == 'c'", "a", true},  // AND is the stronger
      {"(SELF == 'a' OR SELF == 'b') AND SELF == 'c'", "a", false},
      {"NOT SELF LIKE \"*.txt\" && SELF != 'it\\'s'", "a.text", true},
      {"(SELF LIKE %@)", "b", false},  // an argument is a value
      {"(SELF LIKE %@)", "a' OR SELF == 'b", true}};
  for (const auto& [predicate, text, isTrue] : cases) EXPECT_EQ(holds(predicate, text), isTrue) << predicate;
}

TEST(Predicate, RejectsMalformedPredicates) {
  for (const std::string& text :
       std::vector<std::string>{"", "SELF", "SELF ==", "SELF == 'a", "(SELF == 'a'", "SELF == 'a')", "SELF ~ 'a'",
                                "SELF == 'a' SELF == 'b'", "SELF == %@", std::string(100000, '(')}) {
    EXPECT_THROW(Predicate::parse(text), Exception) << text.substr(0, 40);
  }
}

}  // namespace

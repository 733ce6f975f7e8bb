#include <gtest/gtest.h>

#include <string>

#include "foundation/Predicate.h"

namespace {

class Person : public KeyValueCoding {
 public:
  [[nodiscard]] Value valueForKey(std::string_view key) const override {
    if (key == "isTall") return true;
    if (key == "age") return std::int64_t{30};
    if (key == "name") return "Ada";
    throw UnknownKey(key);
  }
};

TEST(Predicate, TestsTexts) {
  const auto holds = [](const char* predicate, const char* text) {
    return Predicate::parse(predicate).evaluate(Value(text));
  };
  EXPECT_TRUE(holds("SELF contains 'Paths' AND SELF contains 'Adobe'", "Adobe Photoshop CS6 Paths"));
  EXPECT_FALSE(holds("SELF contains 'Paths' AND SELF contains 'Adobe'", "Adobe photoshop paths"));
  EXPECT_TRUE(holds("SELF == 'a' OR SELF == 'b' AND SELF == 'c'", "a")) << "AND is the stronger";
  EXPECT_FALSE(holds("(SELF == 'a' OR SELF == 'b') AND SELF == 'c'", "a"));
  EXPECT_TRUE(holds("NOT SELF LIKE \"*.txt\" && SELF != 'it\\'s'", "a.text"));
}

TEST(Predicate, TestsPropertiesByKey) {
  const Person ada;
  const auto holds = [&](const char* predicate) { return Predicate::parse(predicate).evaluate(ada); };
  EXPECT_TRUE(holds("isTall == YES"));
  EXPECT_TRUE(holds("(isTall == NO) OR (age == 30)"));
  EXPECT_FALSE(holds("name == isTall"));
  EXPECT_FALSE(holds("age contains '3'"));
  EXPECT_THROW(static_cast<void>(holds("(hostname == bogus)")), UnknownKey);
}

TEST(Predicate, TakesArgumentsAsValues) {
  const Value arguments[] = {Value("a' OR SELF == 'b")};
  const Predicate predicate = Predicate::parse("(SELF LIKE %@)", arguments);
  EXPECT_FALSE(predicate.evaluate(Value("b")));
  EXPECT_TRUE(predicate.evaluate(Value("a' OR SELF == 'b")));
  EXPECT_THROW(Predicate::parse("SELF == %@"), Exception);
}

TEST(Predicate, RefusesWhatIsNone) {
  for (const char* const text : {"", "SELF", "SELF ==", "SELF == 'a", "(SELF == 'a'", "SELF == 'a')", "SELF ~ 'a'",
                                 "AND", "SELF == 'a' SELF == 'b'"}) {
    EXPECT_THROW(Predicate::parse(text), Exception) << text;
  }
  EXPECT_THROW(Predicate::parse(std::string(100000, '(')), Exception);
}

TEST(Predicate, MatchesWildcards) {
  EXPECT_TRUE(isLike("Dunmore 3.plugin", "D*3.pl?gin"));
  EXPECT_TRUE(isLike("aab", "*ab"));
  EXPECT_TRUE(isLike("", "*"));
  EXPECT_FALSE(isLike("abc", "ab"));
  EXPECT_FALSE(isLike("ab", "abc*"));
  EXPECT_FALSE(isLike(std::string(5000, 'a'), std::string(2000, '*') + "b"));
}

}  // namespace

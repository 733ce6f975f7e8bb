#include <gtest/gtest.h>

#include "foundation/StringsTable.h"

namespace {

using namespace std::string_literals;

TEST(StringsTable, ReadsEveryFormOfEntry) {
  const StringsTable table = parseStringsTable(R"(/* a comment; with "quotes" */
"plain" = "text";   // another
bare-word_1.2 = 'single';
"escapes" = "\"\n\t\\ \U00e9 \U0001 \351 \q \Ud83d\udcf7";
"alone";
"again" = "first"; "again" = "second";
)");
  EXPECT_EQ(table.problem, "");
  EXPECT_EQ(table.texts, (decltype(table.texts){{"plain", "text"},
                                                {"bare-word_1.2", "single"},
                                                {"escapes", "\"\n\t\\ é \x01 é q \xF0\x9F\x93\xB7"},
                                                {"alone", "alone"},
                                                {"again", "second"}}));
  EXPECT_EQ(parseStringsTable("{ a = b; }").texts.at("a"), "b");
  EXPECT_EQ(parseStringsTable("\xFF\xFE\"\0k\0\"\0=\0\"\0\xE4\0\"\0;\0"s).texts.at("k"), "ä");
}

TEST(StringsTable, KeepsWhatStandsBeforeTheFault) {
  for (const auto* const fault : {"\"b\" = \"cut sho", "\"b\" =", "\"b\" = c", "= d;", "/* no end", "\"b\" \"c\";"}) {
    const StringsTable table = parseStringsTable("\"a\" = \"kept\";\n" + std::string(fault));
    EXPECT_EQ(table.texts.at("a"), "kept") << fault;
    EXPECT_EQ(table.texts.size(), 1U) << fault;
    EXPECT_TRUE(table.problem.starts_with("line 2: ")) << fault << ": " << table.problem;
  }
  const StringsTable latin = parseStringsTable("a = 'Ma\xDF';");
  EXPECT_EQ(latin.texts.at("a"), "Ma\xEF\xBF\xBD");
  EXPECT_NE(latin.problem, "");
}

}  // namespace

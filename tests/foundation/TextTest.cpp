// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "foundation/StringsTable.h"
#include "foundation/Text.h"

namespace {

using namespace std::string_literals;

TEST(Text, DetectsEncodings) {
  for (const auto* const good : {"", "Größe", "日本語", "\xF4\x8F\xBF\xBF"}) EXPECT_EQ(decodeUtf8(good), good);
  for (const auto* const bad :
       {"\xFF", "\xC3", "\xC0\xAF", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "a\x80"}) {
    EXPECT_FALSE(isValidUtf8(bad)) << onOneLine(bad);
  }
  EXPECT_EQ(decodeTextFile("\xEF\xBB\xBFMaß").text, "Maß");
  EXPECT_EQ(decodeTextFile("\xFF\xFEM\0a\0\xDF\0"s).text, "Maß");
  EXPECT_EQ(decodeTextFile("\xFE\xFF\0M\0a\0\xDF\xD8\x3D\xDC\xF7"s).text, "Maß\xF0\x9F\x93\xB7");
  EXPECT_EQ(decodeTextFile("\0\"\0a"s).text, "\"a");
  for (const auto& bad : {"Ma\xDF"s, "\xFE\xFF\xD8\x3D"s, "\xFF\xFE\x41"s}) EXPECT_FALSE(decodeTextFile(bad).lossless);
}

TEST(Text, ParsesNumbersAndReplacesText) {
  EXPECT_EQ(std::to_string(integerValue(" 6 beta")) + std::to_string(integerValue("-5.1")), "6-5");
  EXPECT_EQ(integerValue("99999999999999999999"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(replacingOccurrences("/a/a/a", "/a", "/b/a"), "/b/a/b/a/b/a");
  EXPECT_EQ(replacingOccurrences("same", "", "x"), "same");
  EXPECT_EQ(onOneLine("a\nb\tc\x1B[2J\x7F ä\xC2\x9B|\xFF"), "a\\nb\\tc\\x1b[2J\\x7f ä\\xc2\\x9b|\\xff");
}

TEST(Path, IsJoinedAndTakenApart) {
  EXPECT_EQ(joinPath({"/Library", "", "Corvane//a", "/Dunmore 3/"}), "/Library/Corvane/a/Dunmore 3");
  EXPECT_EQ(joinPath("/", "a") + joinPath("", "b"), "/ab");
  const std::array<std::string, 4> cases[] = {
      {"/a/b.app/", "/a", "b.app", "app"},    {"/a", "/", "a", ""}, {"/", "/", "/", ""}, {"a.b.c", "", "a.b.c", "c"},
      {"/CC//.hidden", "/CC", ".hidden", ""}, {"", "", "", ""}};
  for (const auto& [path, folder, name, extension] : cases) {
    EXPECT_EQ(deletingLastPathComponent(path), folder) << path;
    EXPECT_EQ(lastPathComponent(path), name) << path;
    EXPECT_EQ(pathExtension(path), extension) << path;
  }
  EXPECT_TRUE(isAtOrBelow("/a/b", "/a/"));
  EXPECT_TRUE(isAtOrBelow("/a", "/a"));
  EXPECT_FALSE(isAtOrBelow("/ab", "/a"));
  EXPECT_FALSE(isAtOrBelow("/a", ""));
  EXPECT_EQ(fileUrl("/A b/ü?#%"), "file:///A%20b/%C3%BC%3F%23%25");
}

TEST(Format, ToleratesMissingAndExtraPlaceholders) {
  EXPECT_EQ(formatted("%2$@ of %1$@, %d", "one", "two"), "two of one, one");
  EXPECT_EQ(formatted("100%% %@", "%@"), "100% %@") << "an argument is no format";
  EXPECT_EQ(formatted("%@ %@ %9$@|", "few"), "few  |");
  EXPECT_EQ(formatted("%s %0$@ %99999$@ %$@ %", "one"), "%s %0$@ %99999$@ %$@ %");
}

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

TEST(StringsTable, KeepsEntriesBeforeAnError) {
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

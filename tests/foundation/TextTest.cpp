#include <gtest/gtest.h>

#include <limits>

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "foundation/Text.h"

namespace {

using namespace std::string_literals;

TEST(Text, TellsUtf8FromWhatIsNot) {
  for (const auto* const good : {"", "plain", "Größe", "日本語", "\xF0\x9F\x93\xB7", "\xF4\x8F\xBF\xBF"}) {
    EXPECT_EQ(decodeUtf8(good), good);
  }
  for (const auto* const bad :
       {"\xFF", "\xC3", "\xC0\xAF", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "a\x80"}) {
    EXPECT_FALSE(isValidUtf8(bad)) << onOneLine(bad);
  }
}

TEST(Text, ReadsFilesOfAnyEncoding) {
  EXPECT_EQ(decodeTextFile("\xEF\xBB\xBFMaß").text, "Maß");
  EXPECT_EQ(decodeTextFile("\xFF\xFEM\0a\0\xDF\0"s).text, "Maß");
  EXPECT_EQ(decodeTextFile("\xFE\xFF\0M\0a\0\xDF\xD8\x3D\xDC\xF7"s).text, "Maß\xF0\x9F\x93\xB7");
  EXPECT_EQ(decodeTextFile("\0\"\0a"s).text, "\"a");

  const DecodedText latin = decodeTextFile("Ma\xDF");
  EXPECT_EQ(latin.text, "Ma\xEF\xBF\xBD");
  EXPECT_FALSE(latin.lossless);
  EXPECT_FALSE(decodeTextFile("\xFE\xFF\xD8\x3D"s).lossless) << "half of a surrogate pair";
  EXPECT_FALSE(decodeTextFile("\xFF\xFE\x41"s).lossless) << "half of a unit";
}

TEST(Text, FindsNumbersAndReplacesTexts) {
  EXPECT_EQ(integerValue(" 6 beta"), 6);
  EXPECT_EQ(integerValue("-5.1"), -5);
  EXPECT_EQ(integerValue("six"), 0);
  EXPECT_EQ(integerValue("99999999999999999999"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(replacingOccurrences("/a/a/a", "/a", "/b/a"), "/b/a/b/a/b/a");
  EXPECT_EQ(replacingOccurrences("same", "", "x"), "same");
}

TEST(Text, StaysOnOneLine) {
  EXPECT_EQ(onOneLine("a\nb\tc\x1B[2J\x7F ä"), "a\\nb\\tc\\x1b[2J\\x7f ä");
  EXPECT_EQ(onOneLine("\xC2\x9B|\xFF"), "\\xc2\\x9b|\\xff") << "control characters beyond ASCII, and no characters";
}

TEST(Path, JoinsComponentByComponent) {
  EXPECT_EQ(joinPath({"/Library", "", "Corvane", "Dunmore 3"}), "/Library/Corvane/Dunmore 3");
  EXPECT_EQ(joinPath("/Plug-Ins/CC/", "Panels"), "/Plug-Ins/CC/Panels");
  EXPECT_EQ(joinPath({"/a//b", "/c/"}), "/a/b/c");
  EXPECT_EQ(joinPath("/", "a"), "/a");
  EXPECT_EQ(joinPath("", "a"), "a");
}

TEST(Path, TakesPathsApart) {
  struct Case {
    std::string path, folder, name, extension;
  };
  for (const auto& [path, folder, name, extension] : std::initializer_list<Case>{{"/a/b.app/", "/a", "b.app", "app"},
                                                                                 {"/a", "/", "a", ""},
                                                                                 {"/", "/", "/", ""},
                                                                                 {"a.b.c", "", "a.b.c", "c"},
                                                                                 {"/x/.hidden", "/x", ".hidden", ""},
                                                                                 {"/CC//x", "/CC", "x", ""},
                                                                                 {"", "", "", ""}}) {
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

TEST(Format, FillsInWhatItCan) {
  EXPECT_EQ(formatted("%@ of %@", "one", "two"), "one of two");
  EXPECT_EQ(formatted("%2$@ of %1$@, %d", "one", "two"), "two of one, one");
  EXPECT_EQ(formatted("100%% %@", "%@"), "100% %@") << "an argument is no format";
  EXPECT_EQ(formatted("%@ %@ %9$@|", "few"), "few  |");
  EXPECT_EQ(formatted("none", "one"), "none");
  EXPECT_EQ(formatted("%s %0$@ %99999$@ %$@ %", "one"), "%s %0$@ %99999$@ %$@ %");
}

}  // namespace

// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include "foundation/Exception.h"
#include "foundation/RichText.h"

namespace {

using namespace std::string_literals;

RichText read(const std::string& body) { return parseRichTextFormat("{\\rtf1\\ansi " + body + "}"); }
std::string textOf(const std::string& body) { return read(body).string(); }

/// The text with what is special about each run before it.
std::string described(const RichText& text) {
  std::string result;
  std::size_t start = 0;
  for (const RichText::Run& run : text.runs()) {
    const RichText::Attributes& a = run.attributes;
    result += "[";
    if (a.bold) result += "b";
    if (a.italic) result += "i";
    if (a.size != 0) result += " " + std::to_string(static_cast<int>(a.size * 10));
    if (a.colour) result += " " + std::to_string(a.colour->red) + "," + std::to_string(a.colour->green);
    if (a.alignment == RichText::Alignment::centre) result += " centre";
    if (a.indent != 0) result += " >" + std::to_string(static_cast<int>(a.indent));
    result += "]" + text.string().substr(start, run.length);
    start += run.length;
  }
  return result;
}

TEST(RichTextFormat, ReadsCharactersInEveryNotation) {
  EXPECT_EQ(textOf("a\\par b\\line c\\tab d\\\ne\\\r\nf\ng"), "a\nb\nc\td\ne\nfg");
  EXPECT_EQ(textOf("\\{\\}\\\\ \\~\\_\\- \\endash-\\bullet x\\lquote 5"), "{}\\ \u00A0\u2011 –-•x‘5");
  EXPECT_EQ(textOf("Gr\\'fc\\'DFe \\'80\xE9"), "Grüße €é");
  EXPECT_EQ(textOf("\\u233?\\u-10179?\\u-8704? \\uc0\\u26085 \\u26412 ?"), "é\xF0\x9F\x98\x80 日本?");
  EXPECT_EQ(textOf("\xA0"s + "a\0b\x07"s + "c\\'00\\u0?\\'09"), "\u00A0abc\t");

  // A character beyond the encoding, and what stands for it where it cannot be shown.
  EXPECT_EQ(textOf("\\u8364\\'80x"), "€x");
  EXPECT_EQ(textOf("\\uc2\\u26085\\'93\\'fax{\\uc0\\u233 y}\\u233zz!"), "日xéyé!");
  EXPECT_EQ(textOf("\\u8226\\bullet x\\u233\\{y\\u233\\ny?z"), "•xéyéz") << "a fallback that is a control";
  EXPECT_EQ(textOf("{\\uc3\\u233 a}b\\uc3\\u233{c}d"), "ébécd") << "a brace ends it";
  EXPECT_EQ(textOf("\\u-10179?a\\u-8704?\\u-10179?\\u-10179?"), "\uFFFDa\uFFFD\uFFFD\uFFFD") << "halves of pairs";
}

TEST(RichTextFormat, KeepsAttributesToTheirGroups) {
  EXPECT_EQ(described(read("a{\\b b{\\i c}}d e\\b f\\b0 g\\fs27 h\\plain i")), "[]a[b]b[bi]c[]d e[b]f[]g[ 135]h[]i");
  EXPECT_EQ(described(read("{\\colortbl;\\red255\\green8\\blue0;\\red1\\green2\\blue3;}\\cf1 a\\cf2 b\\cf0 c\\cf9 d")),
            "[ 255,8]a[ 1,2]b[]cd");
  EXPECT_EQ(described(read("\\qc a\\par\\pard\\li720 b\\par\\pard c")), "[ centre]a\n[ >36]b\n[]c");
}

TEST(RichTextFormat, SkipsDestinationsAndRejectsOtherFormats) {
  EXPECT_EQ(textOf("{\\fonttbl{\\f0\\fswiss Helvetica;}}{\\stylesheet{ Normal;}}{\\info{\\title T}}{\\header H}a"),
            "a");
  EXPECT_EQ(textOf("{\\*\\expandedcolortbl;;}{\\*\\unheard {\\b of}}{\\field{\\*\\fldinst LINK}{\\fldrslt b}}"), "b");
  EXPECT_EQ(textOf("{\\pict\\bin5 }}{\\\\x}c"), "c") << "braces in binary data";
  EXPECT_EQ(textOf("{\\listtext\t\\'95\t}d"), "\t•\td") << "the mark of a list is shown";

  for (const std::string& bytes : {""s, "plain"s, "{\\rt}"s, "{\\rtf1 never ends"s, "{\\rtf1 {}"s, "{\\rtf1\\"s,
                                   "{\\rtf1\\'"s, "{\\rtf1\\bin99 }}"s, "{\\rtf1 " + std::string(100'000, '{')}) {
    EXPECT_THROW(static_cast<void>(parseRichTextFormat(bytes)), Exception) << bytes.substr(0, 20);
  }
  EXPECT_EQ(parseRichTextFormat("{\\rtf1 a}what follows}").string(), "a");
}

TEST(RichText, ReplacesWithTheAttributesOfTheReplacedText) {
  RichText text = read("Quit %HO{\\b STNAME% now}, %HOSTNAME%!{\\i %HOSTNAME%}");
  EXPECT_TRUE(text.replaceOccurrences("%HOSTNAME%", "<%HOSTNAME%>"));
  EXPECT_EQ(described(text), "[]Quit <%HOSTNAME%>[b] now[], <%HOSTNAME%>![i]<%HOSTNAME%>");
  EXPECT_TRUE(text.replaceOccurrences("Quit <%HOSTNAME%>", ""));
  EXPECT_EQ(described(text), "[b] now[], <%HOSTNAME%>![i]<%HOSTNAME%>");
  const RichText before = text;
  EXPECT_FALSE(text.replaceOccurrences("%NAME%", "x"));
  EXPECT_FALSE(text.replaceOccurrences("", "x"));
  EXPECT_EQ(text, before);
}

}  // namespace

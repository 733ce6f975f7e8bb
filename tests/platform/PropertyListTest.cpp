#include <gtest/gtest.h>

#include <limits>

#include "platform/posix/PropertyList.h"

namespace {

using namespace std::string_literals;

/// The dictionary of sample() in binary form, as another program wrote it.
const std::string& binarySample() {
  static const std::string bytes =
      "\x62\x70\x6c\x69\x73\x74\x30\x30\xda\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0a\x0b\x0c\x0d\x0e\x0f\x14"
      "\x15\x16\x17\x18\x55\x61\x73\x63\x69\x69\x53\x62\x69\x67\x54\x64\x61\x74\x61\x54\x64\x61\x74\x65\x54"
      "\x6c\x69\x73\x74\x54\x6c\x6f\x6e\x67\x56\x6e\x75\x6d\x62\x65\x72\x54\x72\x65\x61\x6c\x54\x74\x65\x78"
      "\x74\x53\x79\x65\x73\x55\x70\x6c\x61\x69\x6e\x14\x00\x00\x00\x00\x00\x00\x00\x00\xff\xff\xff\xff\xff"
      "\xff\xff\xff\x42\x00\xff\x33\x41\xc5\xc8\x58\x2b\x80\x00\x00\xa2\x10\x11\x51\x61\xd1\x12\x13\x51\x6b"
      "\x51\x76\x5f\x10\x14\x78\x78\x78\x78\x78\x78\x78\x78\x78\x78\x78\x78\x78\x78\x78\x78\x78\x78\x78\x78"
      "\x13\xff\xff\xff\xff\xff\xff\xff\xfb\x23\x3f\xf8\x00\x00\x00\x00\x00\x00\x65\x00\x47\x00\x72\x00\xf6"
      "\x00\xdf\x00\x65\x09\x08\x1d\x23\x27\x2c\x31\x36\x3b\x42\x47\x4c\x50\x56\x67\x6a\x73\x76\x78\x7b\x7d"
      "\x7f\x96\x9f\xa8\xb3\x00\x00\x00\x00\x00\x00\x01\x01\x00\x00\x00\x00\x00\x00\x00\x19\x00\x00\x00\x00"
      "\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\xb4"s;
  return bytes;
}

Value::Dictionary sample() {
  return {{"text", "Größe"},
          {"ascii", "plain"},
          {"number", std::int64_t{-5}},
          {"big", std::numeric_limits<std::uint64_t>::max()},
          {"real", 1.5},
          {"yes", true},
          {"data", Value::Data{"\0\xFF"s}},
          {"date", Value::Date{730902615}},
          {"list", Value::Array{"a", Value::Dictionary{{"k", "v"}}}},
          {"long", std::string(20, 'x')}};
}

TEST(PropertyList, ReadsBothForms) {
  const auto binary = readPropertyList(binarySample());
  ASSERT_TRUE(binary) << binary.error().description();
  EXPECT_EQ(*binary, Value(sample()));

  const auto text = writePropertyList(sample());
  ASSERT_TRUE(text);
  const auto xml = readPropertyList(*text);
  ASSERT_TRUE(xml) << xml.error().description();
  EXPECT_EQ(*xml, Value(sample()));

  const auto minimal = readPropertyList("<plist><dict><key>a &amp; b</key><integer> +7 </integer></dict></plist>");
  ASSERT_TRUE(minimal);
  EXPECT_EQ(entryOf(*minimal, "a & b"), Value(std::int64_t{7}));
  EXPECT_TRUE(readPropertyList("\xEF\xBB\xBF<plist><string>s</string></plist>"));
}

TEST(PropertyList, RefusesDamagedXml) {
  for (const auto* const bad :
       {"", "garbage", "<plist>", "<plist></plist>", "<dict></dict>", "<plist><dict><key>a</key></dict></plist>",
        "<plist><dict><string>a</string></dict></plist>", "<plist><dict><dict/></dict></plist>",
        "<plist><integer>1x</integer></plist>", "<plist><integer>18446744073709551616</integer></plist>",
        "<plist><real>one</real></plist>", "<plist><date>2024-02-30T00:00:00Z</date></plist>",
        "<plist><data>?</data></plist>", "<plist><string>a<b/></string></plist>", "<plist><other/></plist>",
        "<plist><key>a</key></plist>", "<plist><string>a</string><string>b</string></plist>",
        "<plist><plist><string>a</string></plist></plist>",
        "<!DOCTYPE plist [<!ENTITY a 'aaaa'>]><plist><string>&a;</string></plist>"}) {
    EXPECT_FALSE(readPropertyList(bad)) << bad;
  }
  std::string deep;
  for (int i = 0; i < 100'000; ++i) deep += "<array>";
  EXPECT_FALSE(readPropertyList("<plist>" + deep));
}

TEST(PropertyList, RefusesDamagedBinaries) {
  for (std::size_t length = 0; length < binarySample().size(); ++length) {
    EXPECT_FALSE(readPropertyList(binarySample().substr(0, length))) << length;
  }
  for (std::size_t i = 0; i < binarySample().size(); ++i) {
    for (const char byte : {'\0', '\xFF', '\x7F'}) {
      std::string damaged = binarySample();
      damaged[i] = byte;
      static_cast<void>(readPropertyList(damaged));  // a value or an error; the sanitizers see anything else
    }
  }
  // An array that holds itself, and one that doubles at each of its levels.
  const std::string trailer = "\0\0\0\0\0\0\1\1\0\0\0\0\0\0\0\1\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x0A"s;
  EXPECT_FALSE(readPropertyList("bplist00\xA1\0\x08"s + trailer));
  std::string bomb = "bplist00";
  std::string offsets;
  for (char level = 0; level < 40; ++level) {
    offsets += static_cast<char>(bomb.size());
    bomb += "\xA2"s + static_cast<char>(level + 1) + static_cast<char>(level + 1);
  }
  offsets += static_cast<char>(bomb.size());
  bomb += '\x09';
  const std::string table(1, static_cast<char>(bomb.size()));
  EXPECT_FALSE(
      readPropertyList(bomb + offsets + "\0\0\0\0\0\0\1\1\0\0\0\0\0\0\0\x29\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"s + table));
}

TEST(PropertyList, WritesOnlyWhatXmlCanHold) {
  EXPECT_FALSE(writePropertyList(Value("a\0b"s)));
  EXPECT_FALSE(writePropertyList(Value::Dictionary{{"\x01", true}}));
  const auto text = writePropertyList(Value("line\r\n<&>"));
  ASSERT_TRUE(text);
  EXPECT_EQ(*readPropertyList(*text), Value("line\r\n<&>"));
}

}  // namespace

// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "foundation/Text.h"
#include "platform/propertylist/PropertyList.h"

namespace {

using namespace std::string_literals;

/// sample in binary form, as another program wrote it.
const std::string binarySample =
    "bplist00\331\1\2\3\4\5\6\7\10\11\12\16\17\20\21\22\23\24\25QaQdQlQnQrQtQuQwQy\242\1\13\321\14\15QkQvB\0\377_"
    "\20\24xxxxxxxxxxxxxxxxxxxx\23\377\377\377\377\377\377\377\373#\77\370\0\0\0\0\0\0e\0G\0r\0\366\0\337\0e\24\0"
    "\0\0\0\0\0\0\0\377\377\377\377\377\377\377\3773A\305\310X+\200\0\0\11\10\33\35\37!#%')+-0357:QZcn\177\210\0"
    "\0\0\0\0\0\1\1\0\0\0\0\0\0\0\26\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\211"s;

const Value sample = Value::Dictionary{{"t", "Größe"},
                                       {"n", std::int64_t{-5}},
                                       {"u", std::numeric_limits<std::uint64_t>::max()},
                                       {"r", 1.5},
                                       {"y", true},
                                       {"d", Value::Data{"\0\xFF"s}},
                                       {"w", Value::Date{730902615}},
                                       {"l", std::string(20, 'x')},
                                       {"a", Value::Array{"a", Value::Dictionary{{"k", "v"}}}}};

TEST(PropertyList, ReadsBothFormsAndWritesOnlyWhatXmlCanHold) {
  EXPECT_EQ(*readPropertyList(binarySample), sample);
  for (const Value& value : {sample, Value("line\r\n<&>")})
    EXPECT_EQ(*readPropertyList(*writePropertyList(value)), value);
  for (const Value& value : {Value("a\0b"s), Value(Value::Dictionary{{"\x01", true}})}) {
    EXPECT_FALSE(writePropertyList(value));
  }
}

TEST(PropertyList, ReadsNumbersAsOtherProgramsWriteThem) {
  const auto read = [](const std::string& element) {
    const auto value = readPropertyList("<plist>" + element + "</plist>");
    EXPECT_TRUE(value) << element;
    return value ? *value : Value();
  };
  const auto integer = [&](const std::string& text) { return read("<integer>" + text + "</integer>"); };
  EXPECT_EQ(integer("0x1F"), Value(std::int64_t{31}));
  EXPECT_EQ(integer("-0X10"), Value(std::int64_t{-16}));
  EXPECT_EQ(integer("+12"), Value(std::int64_t{12}));
  EXPECT_EQ(integer("0xFFFFFFFFFFFFFFFF"), Value(std::numeric_limits<std::uint64_t>::max()));
  for (const auto* const text : {"nan", "NaN", "+nan", "-nan"}) {
    const Value value = read("<real>" + std::string(text) + "</real>");
    ASSERT_NE(value.as<double>(), nullptr) << text;
    EXPECT_TRUE(std::isnan(*value.as<double>())) << text;
    EXPECT_TRUE(readPropertyList(*writePropertyList(value))) << text;
  }
  for (const auto* const text : {"inf", "+infinity"}) {
    EXPECT_EQ(read("<real>" + std::string(text) + "</real>"), Value(std::numeric_limits<double>::infinity())) << text;
  }
}

TEST(PropertyList, RejectsDamagedXml) {
  for (const auto* const bad :
       {"", "garbage", "<plist>", "<plist><dict><key>a</key></dict></plist>",
        "<plist><dict><string>a</string></dict></plist>", "<plist><dict><dict/></dict></plist>",
        "<plist><integer>18446744073709551616</integer></plist>", "<plist><real>one</real></plist>",
        "<plist><date>2024-02-30T00:00:00Z</date></plist>", "<plist><data>?</data></plist>",
        "<plist><string>a<b/></string></plist>", "<plist><other/></plist>",
        "<plist><string>a</string><string>b</string></plist>", "<plist><plist><string>a</string></plist></plist>",
        "<!DOCTYPE plist [<!ENTITY a 'aaaa'>]><plist><string>&a;</string></plist>"}) {
    EXPECT_FALSE(readPropertyList(bad)) << bad;
  }
  EXPECT_FALSE(readPropertyList("<plist>" + replacingOccurrences(std::string(100'000, 'x'), "x", "<array>")));
}

TEST(PropertyList, RejectsDamagedBinaries) {
  for (std::size_t length = 0; length < binarySample.size(); ++length) {
    EXPECT_FALSE(readPropertyList(binarySample.substr(0, length))) << length;
  }
  // An array that doubles at each of its levels. The trailer: how long offsets and references are, and three numbers.
  std::string objects = "bplist00";
  std::string offsets;
  for (char level = 1; level <= 40; ++level) {
    offsets += static_cast<char>(objects.size());
    objects += "\xA2"s + level + level;
  }
  offsets += static_cast<char>(objects.size());
  const auto number = [](std::size_t value) { return std::string(7, '\0') + static_cast<char>(value); };
  EXPECT_FALSE(readPropertyList(objects + '\x09' + offsets + "\0\0\0\0\0\0\1\1"s + number(offsets.size()) + number(0) +
                                number(objects.size() + 1)));
}

}  // namespace

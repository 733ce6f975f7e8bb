// SPDX-License-Identifier: Apache-2.0

#include <expat.h>

#include <array>
#include <charconv>
#include <chrono>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "foundation/Text.h"
#include "platform/propertylist/PropertyListReader.h"

namespace {

constexpr std::string_view base64Alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// White space between the digits is passed over; nothing when there is anything else.
std::optional<std::string> decodeBase64(std::string_view text) {
  std::string bytes;
  std::uint32_t bits = 0;
  int count = 0;
  for (const char c : text) {
    if (c == ' ' || (c >= '\t' && c <= '\r')) continue;
    if (c == '=') break;
    const std::size_t digit = base64Alphabet.find(c);
    if (digit == std::string_view::npos) return std::nullopt;
    bits = (bits << 6U) | static_cast<std::uint32_t>(digit);
    count += 6;
    if (count >= 8) {
      count -= 8;
      bytes += static_cast<char>((bits >> static_cast<unsigned>(count)) & 0xFFU);
    }
  }
  return bytes;
}

/// Decimal, or hexadecimal after "0x", with or without a sign.
std::optional<Value> parseInteger(std::string_view text) {
  text = trimmed(text);
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) text.remove_prefix(1);
  const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (isHexadecimal) text.remove_prefix(2);
  std::uint64_t size = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), size, isHexadecimal ? 16 : 10);
  if (end != text.data() + text.size() || error != std::errc()) return std::nullopt;
  constexpr std::uint64_t largest = std::numeric_limits<std::int64_t>::max();
  if (isNegative) return size > largest + 1 ? std::nullopt : std::optional<Value>(static_cast<std::int64_t>(0 - size));
  return size > largest ? Value(size) : Value(static_cast<std::int64_t>(size));
}

std::optional<Value> parseReal(std::string_view text) {
  text = trimmed(text);
  if (text.starts_with('+')) text.remove_prefix(1);
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (end != text.data() + text.size() || error != std::errc()) return std::nullopt;
  return Value(number);
}

/// Builds the value from the parser's events. Whatever is wrong stops the parser.
class Builder {
 public:
  explicit Builder(XML_Parser parser) : parser_(parser) {
    XML_SetUserData(parser, this);
    XML_SetElementHandler(
        parser, [](void* self, const XML_Char* name, const XML_Char**) { static_cast<Builder*>(self)->start(name); },
        [](void* self, const XML_Char* name) { static_cast<Builder*>(self)->end(name); });
    XML_SetCharacterDataHandler(parser, [](void* self, const XML_Char* text, int length) {
      static_cast<Builder*>(self)->text_.append(text, static_cast<std::size_t>(length));
    });
    // Reject entity declarations: property lists need none, and expansion makes a small file huge.
    XML_SetEntityDeclHandler(
        parser, [](void* self, const XML_Char*, int, const XML_Char*, int, const XML_Char*, const XML_Char*,
                   const XML_Char*, const XML_Char*) { static_cast<Builder*>(self)->fail("it declares entities"); });
  }

  [[nodiscard]] const std::string& problem() const { return problem_; }
  [[nodiscard]] std::optional<Value>& result() { return result_; }

 private:
  struct Container {
    bool isDictionary;
    Value::Dictionary dictionary = {};
    Value::Array array = {};
    std::optional<std::string> key = std::nullopt;
  };

  void fail(std::string_view what) {
    if (problem_.empty()) problem_ = what;
    XML_StopParser(parser_, XML_FALSE);
  }

  void start(std::string_view name) {
    text_.clear();
    if (std::exchange(isInLeaf_, false)) return fail("an element inside a value");
    if (name == "plist") {
      if (isInPlist_) fail("a property list inside another");
      isInPlist_ = true;
    } else if (!isInPlist_ || (open_.empty() && result_)) {
      fail("a value in the wrong place");
    } else if (name == "dict" || name == "array") {
      if (open_.size() >= deepestPropertyList) return fail("nested too deeply");
      if (!open_.empty() && open_.back().isDictionary && !open_.back().key) return fail("a value without a key");
      open_.push_back({.isDictionary = name == "dict"});
    } else {
      isInLeaf_ = true;
    }
  }

  void end(std::string_view name) {
    isInLeaf_ = false;
    if (name == "plist") return;
    if (name == "key") {
      if (open_.empty() || !open_.back().isDictionary || open_.back().key) return fail("a key in the wrong place");
      open_.back().key = std::move(text_);
      return;
    }
    if (name == "dict" || name == "array") {
      Container container = std::move(open_.back());
      open_.pop_back();
      if (container.key) return fail("a key without a value");
      return add(container.isDictionary ? Value(std::move(container.dictionary)) : Value(std::move(container.array)));
    }
    auto value = leaf(name);
    if (!value) return fail("a value that cannot be read");
    add(std::move(*value));
  }

  std::optional<Value> leaf(std::string_view name) {
    if (name == "string") return Value(std::move(text_));
    if (name == "true") return Value(true);
    if (name == "false") return Value(false);
    if (name == "integer") return parseInteger(text_);
    if (name == "real") return parseReal(text_);
    if (name == "date") {
      const auto date = parsePropertyListDate(trimmed(text_));
      return date ? std::optional<Value>(*date) : std::nullopt;
    }
    if (name == "data") {
      auto bytes = decodeBase64(text_);
      return bytes ? std::optional<Value>(Value::Data{std::move(*bytes)}) : std::nullopt;
    }
    return std::nullopt;
  }

  void add(Value value) {
    if (open_.empty()) {
      result_ = std::move(value);
      return;
    }
    Container& container = open_.back();
    if (!container.isDictionary) {
      container.array.push_back(std::move(value));
    } else if (container.key) {
      container.dictionary.insert_or_assign(std::move(*container.key), std::move(value));
      container.key.reset();
    } else {
      fail("a value without a key");
    }
  }

  XML_Parser parser_;
  bool isInPlist_ = false;
  bool isInLeaf_ = false;
  std::string text_;
  std::vector<Container> open_;
  std::optional<Value> result_;
  std::string problem_;
};

}  // namespace

Result<Value> readXmlPropertyList(std::string_view bytes) {
  const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate(nullptr), &XML_ParserFree);
  if (parser == nullptr) return propertyListError("no memory");
  Builder builder(parser.get());
  constexpr std::size_t most = std::size_t{1} << 30U;
  if (bytes.size() > most) return propertyListError("too large");
  const XML_Status status = XML_Parse(parser.get(), bytes.data(), static_cast<int>(bytes.size()), /*isFinal=*/1);
  if (status != XML_STATUS_OK) {
    if (!builder.problem().empty()) return propertyListError(builder.problem());
    return propertyListError("line " + std::to_string(XML_GetCurrentLineNumber(parser.get())) + ": " +
                             XML_ErrorString(XML_GetErrorCode(parser.get())));
  }
  if (!builder.result()) return propertyListError("it holds no value");
  return std::move(*builder.result());
}

std::optional<Value::Date> parsePropertyListDate(std::string_view text) {
  // 2001-01-01T00:00:00Z
  constexpr std::string_view pattern = "dddd-dd-ddTdd:dd:ddZ";
  if (text.size() != pattern.size()) return std::nullopt;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const bool isDigit = text[i] >= '0' && text[i] <= '9';
    if (pattern[i] == 'd' ? !isDigit : text[i] != pattern[i]) return std::nullopt;
  }
  const auto number = [&](std::size_t start, std::size_t length) { return integerValue(text.substr(start, length)); };
  using namespace std::chrono;
  const year_month_day day{year(static_cast<int>(number(0, 4))), month(static_cast<unsigned>(number(5, 2))),
                           std::chrono::day(static_cast<unsigned>(number(8, 2)))};
  if (!day.ok() || number(11, 2) > 23 || number(14, 2) > 59 || number(17, 2) > 60) return std::nullopt;
  constexpr sys_days epoch = sys_days(2001y / January / 1);
  const seconds time = (sys_days(day) - epoch) + hours(number(11, 2)) + minutes(number(14, 2)) + seconds(number(17, 2));
  return Value::Date{static_cast<double>(time.count())};
}

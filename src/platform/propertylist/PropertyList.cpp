// SPDX-License-Identifier: Apache-2.0

#include "platform/propertylist/PropertyList.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <iomanip>
#include <sstream>

#include "platform/propertylist/PropertyListReader.h"

namespace {

/// Whether XML can represent the code point: not most control characters, U+FFFE and U+FFFF.
bool canBeWritten(std::string_view text) {
  if (text.find("\xEF\xBF\xBE") != std::string_view::npos || text.find("\xEF\xBF\xBF") != std::string_view::npos) {
    return false;
  }
  return std::ranges::all_of(
      text, [](char c) { return static_cast<unsigned char>(c) >= 0x20 || c == '\n' || c == '\t' || c == '\r'; });
}

std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c == '<') {
      result += "&lt;";
    } else if (c == '>') {
      result += "&gt;";
    } else if (c == '&') {
      result += "&amp;";
    } else if (c == '\r') {
      result += "&#13;";
    } else {
      result += c;
    }
  }
  return result;
}

std::string encodedBase64(std::string_view bytes) {
  constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    std::uint32_t bits = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      bits = (bits << 8U) | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0U);
    }
    for (std::size_t k = 0; k < 4; ++k) {
      text += i + k <= bytes.size() ? alphabet[(bits >> (18 - 6 * k)) & 0x3FU] : '=';
    }
  }
  return text;
}

std::string dateText(Value::Date date) {
  using namespace std::chrono;
  // The form has four digits for the year and no fraction of a second.
  constexpr double furthest = 2.5e11;
  const auto whole = std::isfinite(date.seconds) ? std::clamp(std::floor(date.seconds), -6.3e10, furthest) : 0.0;
  const sys_seconds moment = sys_days(2001y / January / 1) + seconds(static_cast<std::int64_t>(whole));
  const sys_days day = floor<days>(moment);
  const year_month_day calendar(day);
  const hh_mm_ss time(moment - day);
  std::ostringstream text;
  text << std::setfill('0') << std::setw(4) << static_cast<int>(calendar.year()) << '-' << std::setw(2)
       << static_cast<unsigned>(calendar.month()) << '-' << std::setw(2) << static_cast<unsigned>(calendar.day()) << 'T'
       << std::setw(2) << time.hours().count() << ':' << std::setw(2) << time.minutes().count() << ':' << std::setw(2)
       << time.seconds().count() << 'Z';
  return text.str();
}

std::string realText(double number) {
  std::string text(32, '\0');
  const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number);
  text.resize(error == std::errc() ? static_cast<std::size_t>(end - text.data()) : 0);
  return text;
}

class Writer {
 public:
  std::string text;
  bool isComplete = true;

  void write(const Value& value, const std::string& indent) {
    if (const auto* flag = value.as<bool>()) {
      text.append(indent).append(*flag ? "<true/>\n" : "<false/>\n");
    } else if (const auto* integer = value.as<std::int64_t>()) {
      element(indent, "integer", std::to_string(*integer));
    } else if (const auto* large = value.as<std::uint64_t>()) {
      element(indent, "integer", std::to_string(*large));
    } else if (const auto* real = value.as<double>()) {
      element(indent, "real", realText(*real));
    } else if (const auto* string = value.as<std::string>()) {
      textElement(indent, "string", *string);
    } else if (const auto* data = value.as<Value::Data>()) {
      element(indent, "data", encodedBase64(data->bytes));
    } else if (const auto* date = value.as<Value::Date>()) {
      element(indent, "date", dateText(*date));
    } else if (const auto* array = value.as<Value::Array>()) {
      text.append(indent).append("<array>\n");
      for (const Value& item : *array) write(item, indent + '\t');
      text.append(indent).append("</array>\n");
    } else if (const auto* dictionary = value.as<Value::Dictionary>()) {
      text.append(indent).append("<dict>\n");
      for (const auto& [key, item] : *dictionary) {
        if (item.isNone()) continue;
        textElement(indent + '\t', "key", key);
        write(item, indent + '\t');
      }
      text.append(indent).append("</dict>\n");
    }
  }

 private:
  void element(std::string_view indent, std::string_view name, std::string_view content) {
    text.append(indent).append("<").append(name).append(">").append(content).append("</").append(name).append(">\n");
  }

  void textElement(std::string_view indent, std::string_view name, std::string_view content) {
    if (!canBeWritten(content)) isComplete = false;
    element(indent, name, escaped(content));
  }
};

}  // namespace

Error propertyListError(std::string_view what) {
  return {std::string(propertyListErrorDomain),
          propertyListReadCorruptError,
          {{std::string(Error::localizedDescriptionKey), "not a property list: " + std::string(what)}}};
}

Result<Value> readPropertyList(std::string_view bytes) {
  return bytes.starts_with("bplist0") ? readBinaryPropertyList(bytes) : readXmlPropertyList(bytes);
}

Result<std::string> writePropertyList(const Value& value) {
  Writer writer;
  writer.text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
      "<plist version=\"1.0\">\n";
  writer.write(value, "");
  if (!writer.isComplete) return propertyListError("XML cannot write a control character");
  return writer.text + "</plist>\n";
}

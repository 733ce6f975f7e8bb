// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// A property-list value or none, as in preferences, info dictionaries and keyed properties.
class Value {
 public:
  struct Data {
    std::string bytes;
    bool operator==(const Data&) const = default;
  };
  /// A time, in seconds since 2001-01-01 00:00 UTC.
  struct Date {
    double seconds = 0;
    bool operator==(const Date&) const = default;
  };
  using Array = std::vector<Value>;
  using Dictionary = std::map<std::string, Value, std::less<>>;

  Value() = default;
  Value(bool value) : content_(value) {}
  Value(std::int64_t value) : content_(value) {}
  /// Only for numbers beyond the signed range.
  Value(std::uint64_t value) : content_(value) {}
  Value(double value) : content_(value) {}
  Value(std::string value) : content_(std::move(value)) {}
  Value(std::string_view value) : content_(std::string(value)) {}
  Value(const char* value) : content_(std::string(value)) {}
  Value(Data value) : content_(std::move(value)) {}
  Value(Date value) : content_(value) {}
  Value(Array value) : content_(std::move(value)) {}
  Value(Dictionary value) : content_(std::move(value)) {}

  [[nodiscard]] bool isNone() const { return std::holds_alternative<std::monostate>(content_); }

  /// Returns the content when it is a T, null otherwise.
  template <class T>
  [[nodiscard]] const T* as() const {
    return std::get_if<T>(&content_);
  }
  template <class T>
  [[nodiscard]] T* as() {
    return std::get_if<T>(&content_);
  }

  /// Returns the text, or an empty one when the value is not a text.
  [[nodiscard]] std::string text() const;

  bool operator==(const Value&) const = default;

 private:
  std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::string, Data, Date, Array, Dictionary>
      content_;
};

/// Returns the entry of the dictionary, or none when it is missing or the value is not a dictionary.
[[nodiscard]] Value entryOf(const Value& dictionary, std::string_view key);

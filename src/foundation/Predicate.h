#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string_view>

#include "foundation/KeyValueCoding.h"
#include "foundation/Value.h"

/// A test written as text and evaluated over values or over objects with keyed properties:
///
///     hostIsInstalled == YES
///     SELF contains 'Paths' AND SELF contains 'Adobe'
///     (kMDItemFSName LIKE %@)
///
/// Comparisons are ==, !=, contains (a substring, case-sensitive) and LIKE ("*" stands for any text, "?" for one byte);
/// they join with NOT, AND and OR, in that order of strength. A word that is no keyword is the key of a property.
class Predicate {
 public:
  /// Reads the text; "%@" takes the next argument as a value, never as text of the predicate. Throws Exception when the
  /// text is not a predicate.
  static Predicate parse(std::string_view text, std::span<const Value> arguments = {});

  /// SELF is the value; every key is unknown.
  [[nodiscard]] bool evaluate(const Value& value) const;

  /// Keys are those of the object, SELF is no value. Throws UnknownKey as the object does.
  [[nodiscard]] bool evaluate(const KeyValueCoding& object) const;

  using Lookup = std::function<Value(std::string_view key)>;
  struct Node {
    virtual ~Node() = default;
    [[nodiscard]] virtual bool holds(const Value& self, const Lookup& lookup) const = 0;
  };

 private:
  explicit Predicate(std::shared_ptr<const Node> root) : root_(std::move(root)) {}

  std::shared_ptr<const Node> root_;
};

/// Whether the text matches a LIKE pattern.
[[nodiscard]] bool isLike(std::string_view text, std::string_view pattern);

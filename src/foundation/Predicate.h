// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string_view>

#include "foundation/KeyValueCoding.h"
#include "foundation/Value.h"

/// A condition that is parsed from text and evaluated on values or on objects with keyed properties:
///
///     hostIsInstalled == YES
///     SELF contains 'Paths' AND SELF contains 'Adobe'
///     (kMDItemFSName LIKE %@)
///
/// Comparisons are ==, !=, contains (a substring, case-sensitive) and LIKE ("*" stands for any text, "?" for one byte);
/// NOT, AND and OR combine them, in descending order of precedence. Any other word is the key of a property.
class Predicate {
 public:
  /// Parses the text. "%@" stands for the next argument, which is a value and never parsed. Throws Exception when the
  /// text is malformed.
  static Predicate parse(std::string_view text, std::span<const Value> arguments = {});

  /// Evaluates with SELF as the value. Every key is unknown.
  [[nodiscard]] bool evaluate(const Value& value) const;

  /// Evaluates with the keys of the object and an empty SELF. Throws UnknownKey as the object does.
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

// SPDX-License-Identifier: Apache-2.0

#include "foundation/Predicate.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "foundation/Exception.h"
#include "foundation/Text.h"

namespace {

using Node = Predicate::Node;
using Lookup = Predicate::Lookup;
using NodePointer = std::shared_ptr<const Node>;

enum class Comparison { equal, unequal, contains, like };

struct Operand {
  enum class Kind { self, key, constant } kind = Kind::self;
  std::string key = {};
  Value constant = {};

  [[nodiscard]] Value value(const Value& self, const Lookup& lookup) const {
    if (kind == Kind::self) return self;
    return kind == Kind::key ? lookup(key) : constant;
  }
};

bool areEqual(const Value& a, const Value& b) {
  const auto number = [](const Value& value) -> std::optional<double> {
    if (const auto* flag = value.as<bool>()) return *flag ? 1.0 : 0.0;
    if (const auto* integer = value.as<std::int64_t>()) return static_cast<double>(*integer);
    if (const auto* real = value.as<double>()) return *real;
    return std::nullopt;
  };
  const auto left = number(a);
  const auto right = number(b);
  return left && right ? *left == *right : a == b;
}

struct ComparisonNode : Node {
  ComparisonNode(Operand l, Comparison c, Operand r) : left(std::move(l)), comparison(c), right(std::move(r)) {}

  [[nodiscard]] bool holds(const Value& self, const Lookup& lookup) const override {
    const Value a = left.value(self, lookup);
    const Value b = right.value(self, lookup);
    if (comparison == Comparison::equal) return areEqual(a, b);
    if (comparison == Comparison::unequal) return !areEqual(a, b);
    const auto* text = a.as<std::string>();
    const auto* pattern = b.as<std::string>();
    if (text == nullptr || pattern == nullptr) return false;
    return comparison == Comparison::contains ? text->find(*pattern) != std::string::npos : isLike(*text, *pattern);
  }

  Operand left;
  Comparison comparison;
  Operand right;
};

struct NotNode : Node {
  explicit NotNode(NodePointer n) : negated(std::move(n)) {}
  [[nodiscard]] bool holds(const Value& self, const Lookup& lookup) const override {
    return !negated->holds(self, lookup);
  }
  NodePointer negated;
};

struct JunctionNode : Node {
  JunctionNode(bool all, std::vector<NodePointer> n) : needsAll(all), nodes(std::move(n)) {}
  [[nodiscard]] bool holds(const Value& self, const Lookup& lookup) const override {
    for (const NodePointer& node : nodes) {
      if (node->holds(self, lookup) != needsAll) return !needsAll;
    }
    return needsAll;
  }
  bool needsAll;
  std::vector<NodePointer> nodes;
};

class PredicateParser {
 public:
  PredicateParser(std::string_view text, std::span<const Value> arguments) : text_(text), arguments_(arguments) {}

  NodePointer parse() {
    NodePointer root = parseOr();
    skipBlanks();
    if (next_ != text_.size()) fail();
    return root;
  }

 private:
  [[noreturn]] void fail() const {
    throw Exception("not a predicate from \"" + std::string(text_.substr(next_)) + "\" on: " + std::string(text_));
  }

  void skipBlanks() {
    while (next_ < text_.size() && (text_[next_] == ' ' || text_[next_] == '\t' || text_[next_] == '\n')) ++next_;
  }

  static bool isWordByte(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '.';
  }

  bool consume(std::string_view symbol) {
    skipBlanks();
    if (!text_.substr(next_).starts_with(symbol)) return false;
    next_ += symbol.size();
    return true;
  }

  [[nodiscard]] std::string_view peekWord() {
    skipBlanks();
    std::size_t end = next_;
    while (end < text_.size() && isWordByte(text_[end])) ++end;
    return text_.substr(next_, end - next_);
  }

  bool consumeWord(std::string_view word) {
    if (!equalIgnoringCase(peekWord(), word)) return false;
    next_ += word.size();
    return true;
  }

  NodePointer parseOr() {
    return parseJunction("OR", "||", /*needsAll=*/false, [this] { return parseAnd(); });
  }
  NodePointer parseAnd() {
    return parseJunction("AND", "&&", /*needsAll=*/true, [this] { return parseNot(); });
  }

  template <class Next>
  NodePointer parseJunction(std::string_view word, std::string_view symbol, bool needsAll, Next next) {
    std::vector<NodePointer> nodes = {next()};
    while (consumeWord(word) || consume(symbol)) nodes.push_back(next());
    if (nodes.size() == 1) return nodes.front();
    return std::make_shared<JunctionNode>(needsAll, std::move(nodes));
  }

  NodePointer parseNot() {
    if (++depth_ > deepest) throw Exception("a predicate that is nested too deeply");
    NodePointer node;
    if (consumeWord("NOT")) {
      node = std::make_shared<NotNode>(parseNot());
    } else if (consume("(")) {
      node = parseOr();
      if (!consume(")")) fail();
    } else {
      Operand left = parseOperand();
      const Comparison comparison = parseComparison();
      node = std::make_shared<ComparisonNode>(std::move(left), comparison, parseOperand());
    }
    --depth_;
    return node;
  }

  Comparison parseComparison() {
    if (consume("==") || consume("=")) return Comparison::equal;
    if (consume("!=")) return Comparison::unequal;
    if (consumeWord("contains")) return Comparison::contains;
    if (consumeWord("LIKE")) return Comparison::like;
    fail();
  }

  Operand parseOperand() {
    using Kind = Operand::Kind;
    if (consume("%@")) {
      if (nextArgument_ >= arguments_.size()) throw Exception("a predicate with too few arguments");
      return {.kind = Kind::constant, .constant = arguments_[nextArgument_++]};
    }
    skipBlanks();
    if (next_ < text_.size() && (text_[next_] == '\'' || text_[next_] == '"')) {
      return {.kind = Kind::constant, .constant = parseQuoted()};
    }
    const std::string_view word = peekWord();
    if (word.empty()) fail();
    next_ += word.size();
    if (equalIgnoringCase(word, "SELF")) return {.kind = Kind::self};
    if (equalIgnoringCase(word, "YES") || equalIgnoringCase(word, "TRUE")) return constant(true);
    if (equalIgnoringCase(word, "NO") || equalIgnoringCase(word, "FALSE")) return constant(false);
    if (word.find_first_not_of("0123456789") == std::string_view::npos) return constant(integerValue(word));
    return {.kind = Kind::key, .key = std::string(word)};
  }

  static Operand constant(Value value) { return {.kind = Operand::Kind::constant, .constant = std::move(value)}; }

  Value parseQuoted() {
    const char quote = text_[next_++];
    std::string text;
    while (next_ < text_.size() && text_[next_] != quote) {
      if (text_[next_] == '\\' && next_ + 1 < text_.size()) ++next_;
      text += text_[next_++];
    }
    if (next_ >= text_.size()) fail();
    ++next_;
    return text;
  }

  static constexpr int deepest = 64;
  std::string_view text_;
  std::span<const Value> arguments_;
  std::size_t next_ = 0;
  std::size_t nextArgument_ = 0;
  int depth_ = 0;
};

}  // namespace

Predicate Predicate::parse(std::string_view text, std::span<const Value> arguments) {
  return Predicate(PredicateParser(text, arguments).parse());
}

bool Predicate::evaluate(const Value& value) const {
  return root_->holds(value, [](std::string_view key) -> Value { throw UnknownKey(key); });
}

bool Predicate::evaluate(const KeyValueCoding& object) const {
  return root_->holds({}, [&](std::string_view key) { return object.valueForKey(key); });
}

bool isLike(std::string_view text, std::string_view pattern) {
  // Greedy, with one backtracking point: the last "*" and its position in the text.
  std::size_t at = 0;
  std::size_t in = 0;
  std::optional<std::pair<std::size_t, std::size_t>> star;
  while (at < text.size()) {
    if (in < pattern.size() && pattern[in] == '*') {
      star = {in++, at};
    } else if (in < pattern.size() && (pattern[in] == '?' || pattern[in] == text[at])) {
      ++in;
      ++at;
    } else if (star) {
      in = star->first + 1;
      at = ++star->second;
    } else {
      return false;
    }
  }
  while (in < pattern.size() && pattern[in] == '*') ++in;
  return in == pattern.size();
}

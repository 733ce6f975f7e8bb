// SPDX-License-Identifier: Apache-2.0

#include "foundation/Value.h"

std::string Value::text() const {
  const auto* text = as<std::string>();
  return text != nullptr ? *text : std::string();
}

Value entryOf(const Value& dictionary, std::string_view key) {
  const auto* entries = dictionary.as<Value::Dictionary>();
  if (entries == nullptr) return {};
  const auto found = entries->find(key);
  return found != entries->end() ? found->second : Value();
}

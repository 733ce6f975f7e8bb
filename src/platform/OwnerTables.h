// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "foundation/KeyTable.h"
#include "platform/InterfaceOwner.h"

// An interface's owner answers from two tables: its properties and its actions, each by the name that descriptions use.

template <class Owner>
struct PropertyEntry {
  std::string_view key;
  ShownValue (*read)(const Owner&);
  bool (*write)(Owner&, const ShownValue&) = nullptr;  ///< null: it is only shown
};

template <class Owner>
struct ActionEntry {
  std::string_view key;
  void (*perform)(Owner&, const std::string& sender);
};

/// For a PropertyEntry: what the member function answers.
template <auto answer, class Owner>
ShownValue read(const Owner& owner) {
  return (owner.*answer)();
}

/// For a PropertyEntry: sets a flag through the member function; false for a value that is none.
template <auto set, class Owner>
bool writeFlag(Owner& owner, const ShownValue& value) {
  const bool* const flag = std::get_if<bool>(&value);
  if (flag != nullptr) (owner.*set)(*flag);
  return flag != nullptr;
}

template <class Table, class Owner>
[[nodiscard]] std::optional<ShownValue> readFrom(const Table& properties, std::string_view key, const Owner& owner) {
  const auto* const property = entryFor(properties, key);
  return property == nullptr ? std::nullopt : std::optional(property->read(owner));
}

template <class Table, class Owner>
bool writeTo(const Table& properties, std::string_view key, Owner& owner, const ShownValue& value) {
  const auto* const property = entryFor(properties, key);
  return property != nullptr && property->write != nullptr && property->write(owner, value);
}

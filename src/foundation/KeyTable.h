// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <algorithm>
#include <iterator>
#include <string_view>

/// The entry of the table whose `key` is this one; null when there is none.
template <class Table>
[[nodiscard]] auto entryFor(const Table& table, std::string_view key) {
  const auto found = std::ranges::find(table, key, [](const auto& entry) { return entry.key; });
  return found == std::end(table) ? nullptr : &*found;
}

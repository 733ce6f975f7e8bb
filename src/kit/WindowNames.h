// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <array>
#include <span>
#include <string_view>

/// The names that a description of the window may use.
struct DescriptionNames {
  std::string_view file;
  std::span<const std::string_view> objects;  ///< that the program looks for
  std::span<const std::string_view> keys;     ///< of properties that controls may show
  std::span<const std::string_view> actions;
};

[[nodiscard]] std::span<const DescriptionNames> descriptions();

/// Whether a control of the description may show the property.
[[nodiscard]] bool hasKey(const DescriptionNames& names, std::string_view key);

/// What works in every window.
inline constexpr std::array<std::string_view, 3> applicationActions = {"quit:", "hide:", "about:"};

/// Properties of controls that connect them to a key.
inline constexpr std::array<std::string_view, 10> bindingNames = {
    "bindText",   "bindTitle", "bindName",  "bindEnabled",  "bindVisible",
    "bindTicked", "bindRows",  "bindImage", "bindProgress", "sets"};
/// Other properties of type string that mean something.
inline constexpr std::array<std::string_view, 1> otherProperties = {"role"};

// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/Result.h"
#include "platform/Toolkit.h"

/// An element of an interface description, as Qt's Designer writes it.
struct DescribedElement {
  std::string name;
  std::map<std::string, std::string, std::less<>> attributes = {};
  std::string text = {};
  std::vector<DescribedElement> children = {};
  std::size_t line = 0;  ///< of the file, from 1

  /// The first one with that name; null when there is none.
  [[nodiscard]] const DescribedElement* child(std::string_view childName) const;
  /// Empty when there is none.
  [[nodiscard]] std::string attribute(std::string_view attributeName) const;

  // Properties of a widget, a layout or a spacer. Each has one value.

  [[nodiscard]] const DescribedElement* property(std::string_view propertyName) const;
  [[nodiscard]] std::string textOf(std::string_view propertyName) const;
  [[nodiscard]] bool flagOf(std::string_view propertyName) const { return textOf(propertyName) == "true"; }
  [[nodiscard]] double numberOf(std::string_view propertyName, double fallback) const;
  /// Nothing when there is none. Also for the size of a rectangle.
  [[nodiscard]] std::optional<Size> sizeOf(std::string_view propertyName) const;

  /// The texts that Designer's own widgets do not have: what a control is connected to.
  [[nodiscard]] std::vector<std::pair<std::string, std::string>> connections() const;
};

/// Reads a description. Fails when it is no XML, has entities of its own, or nests too deeply.
[[nodiscard]] Result<DescribedElement> parseInterfaceFile(std::string_view bytes);

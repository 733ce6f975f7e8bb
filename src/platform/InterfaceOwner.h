// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "foundation/KeyValueObserving.h"
#include "foundation/RichText.h"

/// A picture, in whatever form the toolkit keeps it.
class Image {
 public:
  Image() = default;
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;
  virtual ~Image() = default;
};
using Picture = std::shared_ptr<const Image>;

/// A row of a list of choices.
struct ListRow {
  std::string text;
  std::string detail = {};  ///< smaller, below the text; may be empty
  bool isTicked = false;
  Picture picture = nullptr;
};

/// What a control can show, or none.
using ShownValue = std::variant<std::monostate, bool, double, std::string, RichText, Picture, std::vector<ListRow>>;

/// What an interface description is connected to: the properties that its controls show and set, and the actions that
/// they send. The window reads a property again after each did-change of its key.
///
/// An operation that is not overridden has no names: it answers nothing, null or false.
class InterfaceOwner : public KeyValueObserving {
 public:
  /// The property of that name; nothing when there is none.
  [[nodiscard]] virtual std::optional<ShownValue> shownValue(std::string_view /*key*/) const { return std::nullopt; }

  /// False when there is no such property, when it cannot be set, or when the value is of another kind than its own.
  virtual bool setShownValue(std::string_view /*key*/, const ShownValue& /*value*/) { return false; }

  /// Ticks or unticks a row, counted from 0, of a property that is a list; a row that is not there is ignored. False
  /// when there is no such list.
  virtual bool setTicked(std::string_view /*key*/, std::size_t /*row*/, bool /*isTicked*/) { return false; }

  /// The owner of the properties behind a key: in "model.title", of "title". Null when there is none.
  [[nodiscard]] virtual InterfaceOwner* objectForKey(std::string_view /*key*/) { return nullptr; }

  /// Does what a control asks for, by the name of the operation, with the control's name as the sender. False when
  /// there is no such operation; true also when it is there and does nothing at the moment.
  virtual bool performAction(std::string_view /*action*/, const std::string& /*sender*/) { return false; }

  /// Asked when a key is typed into a text that is shown; false leaves the text as it is.
  [[nodiscard]] virtual bool textShouldChange(std::string_view /*replacement*/) { return false; }
};

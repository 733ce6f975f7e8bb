#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "foundation/KeyValueCoding.h"
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
/// Every operation raises UnknownKey for a name that the owner does not have.
class InterfaceOwner : public KeyValueObserving {
 public:
  [[nodiscard]] virtual ShownValue shownValue(std::string_view key) const { throw UnknownKey(key); }
  virtual void setShownValue(std::string_view key, const ShownValue& /*value*/) { throw UnknownKey(key); }

  /// Ticks or unticks a row, counted from 0, of a property that is a list; a row that is not there is ignored.
  virtual void setTicked(std::string_view key, std::size_t /*row*/, bool /*isTicked*/) { throw UnknownKey(key); }

  /// The owner of the properties behind a key: in "model.title", of "title".
  [[nodiscard]] virtual InterfaceOwner* objectForKey(std::string_view key) { throw UnknownKey(key); }

  /// Does what a control asks for, by the name of the operation, with the control's name as the sender.
  virtual void performAction(std::string_view action, const std::string& /*sender*/) { throw UnknownKey(action); }

  /// Asked when a key is typed into a text that is shown; false leaves the text as it is.
  [[nodiscard]] virtual bool textShouldChange(std::string_view /*replacement*/) { return false; }
};

// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/InterfaceOwner.h"
#include "platform/Log.h"

/// A control of a window, as its toolkit has it.
class BoundControl {
 public:
  BoundControl() = default;
  BoundControl(const BoundControl&) = delete;
  BoundControl& operator=(const BoundControl&) = delete;
  virtual ~BoundControl() = default;

  /// For the log.
  [[nodiscard]] virtual std::string name() const = 0;
  [[nodiscard]] virtual bool exists() const = 0;
  /// Nobody can see what it shows, because its page is hidden.
  [[nodiscard]] virtual bool isOnHiddenPage() const = 0;
};

/// Shows a value in one control. False for a value that the control cannot show.
using ShowValue = std::function<bool(const ShownValue& value)>;

/// The value as plain text; nothing when it is of another kind.
[[nodiscard]] std::optional<std::string> plainText(const ShownValue& value);

/// Shows flags through `set`.
[[nodiscard]] ShowValue showFlag(std::function<void(bool)> set);

/// Shows pictures through `set`, and null for no value.
[[nodiscard]] ShowValue showPicture(std::function<void(const Picture&)> set);

/// Shows how much is done, from 0 to 1, through `set`. Nothing means that nobody knows how much there is to do.
[[nodiscard]] ShowValue showProgress(std::function<void(std::optional<double>)> set);

/// What the bindings of an interface need besides its owner.
struct BindingServices {
  std::string interfaceName;  ///< for the log
  Log& log;
  /// Does what the application does itself ("quit:", say) for an owner that does not; false when it does not either.
  std::function<bool(const std::string& action)> performOwnAction;
  /// Has catchUp() called once, after this time. A later call may replace an earlier one.
  std::function<void(std::chrono::milliseconds)> catchUpAfter;
};

/// Connects the controls of an interface to the properties and actions of its owner. It reads a property again after
/// each of its did-changes. A mistake of the description, and an exception of the owner, costs one line of the log.
///
/// A change that takes long, such as the install, is shown with the next change of anything else. Texts and pictures of
/// a hidden page are read when catchUp() finds the page shown. A value that changes faster than anybody can read is
/// shown now and then, and when it has come to rest.
class Bindings {
 public:
  using Index = std::size_t;

  Bindings(InterfaceOwner& owner, BindingServices services);

  /// Has the control show a property: `source` names it by keys joined by full stops, after a "!" when a flag is to be
  /// negated. `property` is what the description calls this. Nothing is shown before showAll().
  Index bind(std::shared_ptr<BoundControl> control, std::string property, std::string_view source, ShowValue show);

  void showAll();
  void show(Index index);
  /// Reads what is behind of all that can be seen, or of this control.
  void catchUp(const BoundControl* control = nullptr);

  // What the person does.
  void setFlag(Index index, bool isOn);
  void setTicked(Index index, std::size_t row, bool isTicked);
  void perform(const std::string& action, const BoundControl& sender);
  void typed(const std::string& text, const BoundControl& control);

  /// Sets a flag of the owner.
  void setOnce(const BoundControl& control, std::string_view key);

  /// Writes one line, the first time that there is this to say.
  void complain(const BoundControl& control, std::string_view what);

 private:
  /// What is compared with what was shown before.
  using KeptValue = std::variant<std::monostate, bool, double, std::string, RichText>;

  struct Binding {
    std::shared_ptr<BoundControl> control;
    std::string property;
    std::string path;
    bool isNegated = false;
    ShowValue show;
    InterfaceOwner* object = nullptr;  ///< who has the last key of the path
    int changesBegun = 0;              ///< that have not ended yet
    bool isBehind = false;             ///< its value changed and is yet to be shown
    KeptValue shown = {};
    std::chrono::steady_clock::time_point shownAt = {};
    std::chrono::steady_clock::time_point changedAt = {};
    int changesInARow = 0;
  };

  [[nodiscard]] static KeptValue keptValueIn(const ShownValue& value);
  void read(Binding& binding, bool mayBePutOff);
  /// Whether the change is to be shown later, which is then seen to.
  [[nodiscard]] bool changesTooFast(Binding& binding);
  void resolve(Binding& binding);
  void observe(InterfaceOwner& object);
  void changeBegins(const InterfaceOwner& object, std::string_view key);
  void changed(const InterfaceOwner& object, std::string_view key);
  /// False, and a line of the log, when the owner raised an exception.
  bool attempt(const BoundControl& control, const std::function<void()>& what);

  InterfaceOwner& owner_;
  BindingServices services_;
  std::vector<Binding> bindings_;
  std::map<const InterfaceOwner*, KeyValueObserving::Observation> observations_;
  std::set<std::string> complaints_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);  ///< an owner may end the interface while it is asked
};

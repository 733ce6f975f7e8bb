#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <chrono>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "foundation/RichText.h"
#include "platform/Bundle.h"
#include "platform/InterfaceOwner.h"
#include "platform/Log.h"
#include "platform/window/qt/QtControls.h"

/// What the bindings of an interface need besides its owner.
struct BindingServices {
  std::string interfaceName;  ///< for the log
  const Bundle& bundle;
  Log& log;
  std::function<Picture(const std::string& name)> imageNamed;
  /// Does what the application does itself ("quit:", say) for an owner that does not; false when it does not either.
  std::function<bool(const std::string& action)> performOwnAction;
};

/// What is compared with what was shown before.
using KeptValue = std::variant<std::monostate, bool, double, std::string, RichText>;

/// Connects the controls of an interface to its owner, as their dynamic properties say: they show its properties, set
/// them, and send its actions. docs/making-an-installer.md lists the names. What a description asks for and does not
/// get costs one line of the log each.
///
/// A change that takes long, as the install does, which runs while its page is entered, is shown with the next change
/// of anything else.
///
/// Texts, pictures and the like on a page that is hidden are read when it is shown, and not before. A line or a number
/// that goes on changing faster than anybody can read, as it does while small files are installed, is shown now and
/// then, and when it has come to rest.
class QtBindings : public QObject {
 public:
  QtBindings(QObject& top, InterfaceOwner& owner, BindingServices services);

 private:
  struct Binding {
    std::string property;
    std::string path;  ///< keys joined by full stops
    bool isNegated = false;
    QPointer<QObject> control;
    ShowValue show;
    InterfaceOwner* object = nullptr;  ///< who has the last key of the path
    int changesBegun = 0;              ///< that have not ended yet
    bool isBehind = false;             ///< its value changed and is yet to be shown
    KeptValue shown = {};
    std::chrono::steady_clock::time_point shownAt = {};
    std::chrono::steady_clock::time_point changedAt = {};
    int changesInARow = 0;
  };

  bool eventFilter(QObject* watched, QEvent* event) override;
  void connectControl(QObject& control);
  void connectProperty(QObject& control, const std::string& property, const std::string& value);
  void bind(QObject& control, const std::string& property, const std::string& value);
  void showLocalizedText(QObject& control, const std::string& property, const std::string& key);
  void connectAction(QObject& control, const std::string& action);
  void setBack(std::size_t binding);

  void show(std::size_t binding);
  void read(Binding& binding, bool mayBePutOff);
  /// Whether the change is to be shown later, which is then seen to.
  [[nodiscard]] bool changesTooFast(Binding& binding);
  /// Reads what is behind, of this control or of all that can be seen.
  void catchUp(const QObject* control);
  void resolve(Binding& binding);
  void observe(InterfaceOwner& object);
  void changeBegins(const InterfaceOwner& object, std::string_view key);
  void changed(const InterfaceOwner& object, std::string_view key);
  void perform(const std::string& action, const QObject& sender);
  /// Writes one line, the first time that there is this to say.
  void complain(const QObject& control, std::string_view what);
  /// Does what the owner may refuse by an exception; false, and a line of the log, when it did.
  bool attempt(const QObject& control, const std::function<void()>& what);

  InterfaceOwner& owner_;
  BindingServices services_;
  std::vector<Binding> bindings_;
  std::map<const InterfaceOwner*, KeyValueObserving::Observation> observations_;
  std::set<std::string> complaints_;
  QTimer rest_;  ///< runs while something that changes too fast is behind
};

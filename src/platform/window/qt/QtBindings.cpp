#include "platform/window/qt/QtBindings.h"

#include <QAbstractButton>
#include <QAction>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QTextEdit>
#include <QWidget>
#include <utility>

#include "foundation/Exception.h"
#include "foundation/Format.h"
#include "platform/window/qt/QtText.h"

namespace {

std::string_view lastKey(std::string_view path) { return path.substr(path.rfind('.') + 1); }

bool isTyped(const QKeyEvent& event) {
  const auto commands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
  return (event.modifiers() & commands) == 0 && !event.text().isEmpty() &&
         (event.text().at(0).isPrint() || event.text().at(0) == '\r');
}

// So many changes are shown at once. While more follow within this time, one is shown in each such time.
constexpr int changesAtOnce = 8;
constexpr std::chrono::milliseconds restingTime(50);

/// What takes time to show, and shows nothing else than itself.
bool mayWait(std::string_view property) {
  return property == "bindText" || property == "bindImage" || property == "bindRows" || property == "bindProgress";
}

/// A text, a number or a flag; anything else is not kept.
KeptValue keptValueIn(const ShownValue& value) {
  if (const auto* const flag = std::get_if<bool>(&value)) return *flag;
  if (const auto* const text = std::get_if<std::string>(&value)) return *text;
  if (const auto* const text = std::get_if<RichText>(&value)) return *text;
  if (const auto* const number = std::get_if<double>(&value)) return *number;
  return {};
}

bool isOnHiddenPage(const QObject& control) {
  const auto* const widget = qobject_cast<const QWidget*>(&control);
  const bool isPart =
      widget != nullptr && !widget->isWindow();  // a menu is not, and its title is seen while it is shut
  return isPart && !widget->isVisibleTo(widget->window());
}

}  // namespace

QtBindings::QtBindings(QObject& top, InterfaceOwner& owner, BindingServices services)
    : owner_(owner), services_(std::move(services)) {
  rest_.setSingleShot(true);
  rest_.setInterval(restingTime);
  connect(&rest_, &QTimer::timeout, this, [this] { catchUp(nullptr); });
  observe(owner_);
  connectControl(top);
  for (QObject* const control : top.findChildren<QObject*>()) connectControl(*control);
  for (std::size_t i = 0; i < bindings_.size(); ++i) show(i);
}

void QtBindings::connectControl(QObject& control) {
  for (const QByteArray& name : control.dynamicPropertyNames()) {
    const QVariant value = control.property(name);
    if (name.startsWith("_q_") || value.userType() != QMetaType::QString) continue;
    connectProperty(control, name.toStdString(), fromQt(value.toString()));
  }
}

void QtBindings::connectProperty(QObject& control, const std::string& property, const std::string& value) {
  if (property == "action") {
    connectAction(control, value);
  } else if (property == "imageName") {
    auto* const label = qobject_cast<QLabel*>(&control);
    const Picture picture = label != nullptr ? services_.imageNamed(value) : nullptr;
    if (picture == nullptr) return complain(control, "no picture named " + value);
    makeBinding("bindImage", control)(picture);
  } else if (property.starts_with("bind")) {
    bind(control, property, value);
  } else if (property.ends_with("Key")) {
    showLocalizedText(control, property, value);
  }
}

void QtBindings::bind(QObject& control, const std::string& property, const std::string& value) {
  Binding binding;
  binding.property = property;
  binding.path = value;
  binding.control = &control;
  binding.isNegated = value.starts_with('!');
  if (binding.isNegated) binding.path.erase(0, 1);
  binding.show = property == "bindRows"
                     ? makeRowsBinding(control, [this] { return services_.imageNamed("GenericApplication"); })
                     : makeBinding(property, control);
  if (!binding.show) return complain(control, "has no " + property);
  const std::size_t index = bindings_.size();
  bindings_.push_back(std::move(binding));
  resolve(bindings_.back());
  control.installEventFilter(this);

  if (property == "bindTicked") {
    if (auto* const action = qobject_cast<QAction*>(&control)) {
      connect(action, &QAction::triggered, this, [this, index] { setBack(index); });
    } else if (auto* const button = qobject_cast<QAbstractButton*>(&control)) {
      connect(button, &QAbstractButton::clicked, this, [this, index] { setBack(index); });
    }
  } else if (property == "bindRows") {
    auto* const list = qobject_cast<QListWidget*>(&control);
    connect(list, &QListWidget::itemChanged, this, [this, index, list](const QListWidgetItem* item) {
      Binding& rows = bindings_[index];
      const auto row = static_cast<std::size_t>(list->row(item));
      const bool isTicked = item->checkState() == Qt::Checked;
      if (rows.object != nullptr) {
        attempt(*list, [&] { rows.object->setTicked(lastKey(rows.path), row, isTicked); });
      }
      // The list is in the middle of telling; what the owner made of the tick is shown afterwards.
      QMetaObject::invokeMethod(
          this, [this, index] { show(index); }, Qt::QueuedConnection);
    });
  } else if (auto* const edit = qobject_cast<QTextEdit*>(&control); edit != nullptr && property == "bindText") {
    edit->setReadOnly(true);
  }
}

void QtBindings::showLocalizedText(QObject& control, const std::string& property, const std::string& key) {
  const std::string binding = property == "textKey" ? "bindText" : property == "nameKey" ? "bindName" : "";
  const ShowValue show = makeBinding(binding, control);
  if (!show) return complain(control, "has no " + property);
  show(services_.bundle.localizedString(key));
}

void QtBindings::connectAction(QObject& control, const std::string& action) {
  const auto perform = [this, action, sender = &control] { this->perform(action, *sender); };
  if (auto* const item = qobject_cast<QAction*>(&control)) {
    connect(item, &QAction::triggered, this, perform);
  } else if (auto* const button = qobject_cast<QAbstractButton*>(&control)) {
    connect(button, &QAbstractButton::clicked, this, perform);
  } else {
    complain(control, "sends no actions");
  }
}

void QtBindings::setBack(std::size_t index) {
  Binding& binding = bindings_[index];
  binding.shown = {};  // the click has changed what is seen
  const auto* const action = qobject_cast<const QAction*>(binding.control);
  const auto* const button = qobject_cast<const QAbstractButton*>(binding.control);
  const bool isTicked = action != nullptr ? action->isChecked() : button != nullptr && button->isChecked();
  if (binding.object != nullptr) {
    attempt(*binding.control,
            [&] { binding.object->setShownValue(lastKey(binding.path), isTicked != binding.isNegated); });
  }
  show(index);
}

void QtBindings::resolve(Binding& binding) {
  binding.object = &owner_;
  std::string_view rest = binding.path;
  attempt(*binding.control, [&] {
    for (std::size_t end = 0; binding.object != nullptr && (end = rest.find('.')) != std::string_view::npos;) {
      InterfaceOwner* const holder = std::exchange(binding.object, nullptr);
      binding.object = holder->objectForKey(rest.substr(0, end));
      rest.remove_prefix(end + 1);
    }
  });
  if (binding.object != nullptr) observe(*binding.object);
}

void QtBindings::observe(InterfaceOwner& object) {
  auto& observation = observations_[&object];
  if (observation != nullptr) return;
  observation = object.observe([this, &object](std::string_view key, KeyValueObserving::Moment moment) {
    if (moment == KeyValueObserving::Moment::didChange) return changed(object, key);
    changeBegins(object, key);
  });
}

void QtBindings::changeBegins(const InterfaceOwner& object, std::string_view key) {
  for (Binding& binding : bindings_) {
    if (binding.object == &object && lastKey(binding.path) == key) ++binding.changesBegun;
  }
}

void QtBindings::changed(const InterfaceOwner& object, std::string_view key) {
  const QPointer<QtBindings> alive(this);  // reading a property may end it all
  const std::string path = std::string(key) + '.';
  for (std::size_t i = 0; alive != nullptr && i < bindings_.size(); ++i) {
    Binding& binding = bindings_[i];
    if (binding.control == nullptr) continue;
    const bool leadsThere = &object == &owner_ && binding.path.starts_with(path);
    if (leadsThere) resolve(binding);
    const bool isMeant = binding.object == &object && lastKey(binding.path) == key;
    if (isMeant && binding.changesBegun > 0) --binding.changesBegun;
    if (leadsThere || isMeant || binding.changesBegun > 0) show(i);
  }
}

bool QtBindings::changesTooFast(Binding& binding) {
  const auto now = std::chrono::steady_clock::now();
  const bool hasRested = now - std::exchange(binding.changedAt, now) >= restingTime;
  binding.changesInARow = hasRested ? 1 : binding.changesInARow + 1;
  if (binding.changesInARow <= changesAtOnce || now - binding.shownAt >= restingTime) return false;
  if (!rest_.isActive()) rest_.start();
  return true;
}

void QtBindings::show(std::size_t index) {
  Binding& binding = bindings_[index];
  if (binding.control == nullptr) return;
  binding.isBehind = mayWait(binding.property) && isOnHiddenPage(*binding.control);
  if (!binding.isBehind) read(binding, /*mayBePutOff=*/true);
}

void QtBindings::read(Binding& binding, bool mayBePutOff) {
  ShownValue value;
  const bool couldRead = attempt(*binding.control, [&] {
    if (binding.object != nullptr) value = binding.object->shownValue(lastKey(binding.path));
  });
  if (!couldRead || binding.control == nullptr) return;
  if (auto* const flag = std::get_if<bool>(&value)) *flag = *flag != binding.isNegated;
  KeptValue kept = keptValueIn(value);
  binding.isBehind = false;
  if (kept != KeptValue()) {
    if (kept == binding.shown) return;
    binding.isBehind = mayBePutOff && mayWait(binding.property) && changesTooFast(binding);
    if (binding.isBehind) return;
  }
  binding.shown = std::move(kept);
  binding.shownAt = std::chrono::steady_clock::now();
  if (binding.show(value)) return;
  complain(*binding.control, formatted("%@ cannot show the value of %@", binding.property, binding.path));
}

void QtBindings::catchUp(const QObject* control) {
  const QPointer<QtBindings> alive(this);
  for (std::size_t i = 0; alive != nullptr && i < bindings_.size(); ++i) {
    Binding& binding = bindings_[i];
    const bool isMeant = control == nullptr || binding.control == control;
    if (!binding.isBehind || !isMeant || binding.control == nullptr) continue;
    if (control == nullptr && isOnHiddenPage(*binding.control)) continue;
    binding.isBehind = false;
    read(binding, /*mayBePutOff=*/false);
  }
}

void QtBindings::perform(const std::string& action, const QObject& sender) {
  const QPointer<QtBindings> alive(this);
  const std::string name = fromQt(sender.objectName());
  try {
    owner_.performAction(action, name);
  } catch (const UnknownKey&) {
    if (alive != nullptr && !services_.performOwnAction(action)) {
      complain(sender, formatted("nobody performs %@", action));
    }
  } catch (const Exception& exception) {
    if (alive != nullptr) complain(sender, exception.what());
  }
}

bool QtBindings::attempt(const QObject& control, const std::function<void()>& what) {
  try {
    what();
    return true;
  } catch (const Exception& exception) {
    complain(control, exception.what());
    return false;
  }
}

void QtBindings::complain(const QObject& control, std::string_view what) {
  std::string line =
      formatted("Interface %@, control \"%@\": %@", services_.interfaceName, fromQt(control.objectName()), what);
  const auto [complaint, isNew] = complaints_.insert(std::move(line));
  if (isNew) services_.log.write(*complaint);
}

bool QtBindings::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Show) catchUp(watched);
  const bool isText = qobject_cast<QTextEdit*>(watched) != nullptr;
  if (!isText || event->type() != QEvent::KeyPress) return QObject::eventFilter(watched, event);
  const auto& key = static_cast<const QKeyEvent&>(*event);
  if (!isTyped(key)) return QObject::eventFilter(watched, event);
  const bool isReturn = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
  const std::string typed = isReturn ? "\n" : fromQt(key.text());
  // Texts are only read, whatever the owner answers.
  attempt(*watched, [&] { static_cast<void>(owner_.textShouldChange(typed)); });
  return isReturn;
}

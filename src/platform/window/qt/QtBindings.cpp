// SPDX-License-Identifier: Apache-2.0

#include "platform/window/qt/QtBindings.h"

#include <QAbstractButton>
#include <QAction>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPointer>
#include <QTextEdit>
#include <QWidget>
#include <utility>

#include "platform/window/qt/QtAccessible.h"
#include "platform/window/qt/QtControls.h"
#include "platform/window/qt/QtText.h"

namespace {

class QtControl : public BoundControl {
 public:
  explicit QtControl(QObject& control) : control_(&control), name_(fromQt(control.objectName())) {}

  [[nodiscard]] std::string name() const override { return name_; }
  [[nodiscard]] bool exists() const override { return control_ != nullptr; }
  [[nodiscard]] bool isOnHiddenPage() const override {
    const auto* const widget = qobject_cast<const QWidget*>(control_.data());
    const bool isPart =
        widget != nullptr && !widget->isWindow();  // a menu is not, and its title is seen while it is shut
    return isPart && !widget->isVisibleTo(widget->window());
  }

 private:
  QPointer<QObject> control_;
  std::string name_;
};

bool isTyped(const QKeyEvent& event) {
  const auto commands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
  return (event.modifiers() & commands) == 0 && !event.text().isEmpty() &&
         (event.text().at(0).isPrint() || event.text().at(0) == '\r');
}

}  // namespace

QtBindings::QtBindings(QObject& top, InterfaceOwner& owner, BindingServices services, BindingResources resources)
    : resources_(std::move(resources)), bindings_(owner, withTimer(std::move(services))) {
  rest_.setSingleShot(true);
  connect(&rest_, &QTimer::timeout, this, [this] { bindings_.catchUp(); });
  connectControl(top);
  for (QObject* const control : top.findChildren<QObject*>()) connectControl(*control);
  bindings_.showAll();
}

BindingServices QtBindings::withTimer(BindingServices services) {
  services.catchUpAfter = [this](std::chrono::milliseconds time) {
    if (!rest_.isActive()) rest_.start(time);
  };
  return services;
}

const std::shared_ptr<BoundControl>& QtBindings::bound(QObject& control) {
  auto& known = controls_[&control];
  if (known == nullptr) known = std::make_shared<QtControl>(control);
  return known;
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
  } else if (property == "sets") {
    bindings_.setOnce(*bound(control), value);
  } else if (property == "imageName") {
    auto* const label = qobject_cast<QLabel*>(&control);
    const Picture picture = label != nullptr ? resources_.imageNamed(value) : nullptr;
    if (picture == nullptr) return complain(control, "no picture named " + value);
    makeBinding("bindImage", control)(picture);
  } else if (property.starts_with("bind")) {
    bind(control, property, value);
  } else if (property.ends_with("Key")) {
    showLocalizedText(control, property, value);
  }
}

void QtBindings::bind(QObject& control, const std::string& property, const std::string& value) {
  ShowValue show = property == "bindRows"
                       ? makeRowsBinding(control, [this] { return resources_.imageNamed("GenericApplication"); })
                       : makeBinding(property, control);
  if (!show) return complain(control, "has no " + property);
  const Bindings::Index index = bindings_.bind(bound(control), property, value, std::move(show));
  control.installEventFilter(this);
  if (property == "bindTicked") connectTick(control, index);
  if (property == "bindRows") connectRows(control, index);
  auto* const edit = qobject_cast<QTextEdit*>(&control);
  if (edit != nullptr && property == "bindText") edit->setReadOnly(true);
}

void QtBindings::connectTick(QObject& control, Bindings::Index index) {
  if (auto* const action = qobject_cast<QAction*>(&control)) {
    connect(action, &QAction::triggered, this, [=, this] { bindings_.setFlag(index, action->isChecked()); });
  } else if (auto* const button = qobject_cast<QAbstractButton*>(&control)) {
    connect(button, &QAbstractButton::clicked, this, [=, this] { bindings_.setFlag(index, button->isChecked()); });
  }
}

void QtBindings::connectRows(QObject& control, Bindings::Index index) {
  auto* const list = qobject_cast<QListWidget*>(&control);
  connect(list, &QListWidget::itemChanged, this, [this, index, list](const QListWidgetItem* item) {
    bindings_.setTicked(index, static_cast<std::size_t>(list->row(item)), item->checkState() == Qt::Checked);
    announceTick(*list, list->row(item));
    // The list is in the middle of telling; what the owner made of the tick is shown afterwards.
    QMetaObject::invokeMethod(
        this, [this, index] { bindings_.show(index); }, Qt::QueuedConnection);
  });
}

void QtBindings::showLocalizedText(QObject& control, const std::string& property, const std::string& key) {
  const std::string binding = property == "textKey" ? "bindText" : property == "nameKey" ? "bindName" : "";
  const ShowValue show = makeBinding(binding, control);
  if (!show) return complain(control, "has no " + property);
  show(resources_.bundle.localizedString(key));
}

void QtBindings::connectAction(QObject& control, const std::string& action) {
  const auto perform = [this, action, sender = bound(control)] { bindings_.perform(action, *sender); };
  if (auto* const item = qobject_cast<QAction*>(&control)) {
    connect(item, &QAction::triggered, this, perform);
  } else if (auto* const button = qobject_cast<QAbstractButton*>(&control)) {
    connect(button, &QAbstractButton::clicked, this, perform);
  } else {
    complain(control, "sends no actions");
  }
}

bool QtBindings::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Show) bindings_.catchUp(bound(*watched).get());
  const bool isText = qobject_cast<QTextEdit*>(watched) != nullptr;
  if (!isText || event->type() != QEvent::KeyPress) return QObject::eventFilter(watched, event);
  const auto& key = static_cast<const QKeyEvent&>(*event);
  if (!isTyped(key)) return QObject::eventFilter(watched, event);
  const bool isReturn = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
  bindings_.typed(isReturn ? "\n" : fromQt(key.text()), *bound(*watched));
  return isReturn;
}

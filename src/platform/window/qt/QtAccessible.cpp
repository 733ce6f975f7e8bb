// SPDX-License-Identifier: Apache-2.0

#include "platform/window/qt/QtAccessible.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>

#include "platform/window/RareAnnouncements.h"
#include "platform/window/qt/QtRowsAccessible.h"

namespace {

constexpr std::pair<const char*, QAccessible::Role> roles[] = {{"heading", QAccessible::Heading},
                                                               {"list", QAccessible::List},
                                                               {"listItem", QAccessible::ListItem},
                                                               {"group", QAccessible::Grouping}};

/// A widget with the role that its description gives it. A list item is told as one thing: the text of its label.
class WithRole : public QAccessibleWidget {
 public:
  WithRole(QWidget& widget, QAccessible::Role role) : QAccessibleWidget(&widget, role) {}

  [[nodiscard]] int childCount() const override { return isLeaf() ? 0 : QAccessibleWidget::childCount(); }
  [[nodiscard]] QAccessibleInterface* child(int index) const override {
    return isLeaf() ? nullptr : QAccessibleWidget::child(index);
  }
  [[nodiscard]] QString text(QAccessible::Text kind) const override {
    const QString own = QAccessibleWidget::text(kind);
    if (!own.isEmpty()) return own;
    for (const QLabel* const label : widget()->findChildren<QLabel*>()) {
      const QString description = label->accessibleDescription();
      if (isLeaf() && kind == QAccessible::Name && !label->text().isEmpty()) return label->text();
      if (isLeaf() && kind == QAccessible::Description && !description.isEmpty()) return description;
    }
    const auto* const label = qobject_cast<const QLabel*>(widget());
    return label != nullptr && kind == QAccessible::Name ? label->text() : own;
  }

 private:
  [[nodiscard]] bool isLeaf() const { return role() == QAccessible::ListItem; }
};

QAccessibleInterface* makeInterface(const QString& /*className*/, QObject* object) {
  auto* const widget = qobject_cast<QWidget*>(object);
  if (widget == nullptr) return nullptr;
  if (auto* const list = qobject_cast<QListWidget*>(widget)) return new QtRowsAccessible(*list);
  const QByteArray wanted = widget->property("role").toByteArray();
  for (const auto& [name, role] : roles) {
    if (wanted == name) return new WithRole(*widget, role);
  }
  return nullptr;
}

void passOn(QAccessibleEvent* event) {
  static RareAnnouncements progress;  // there is one bar, and Qt takes a function without data
  const bool isProgress =
      event->type() == QAccessible::ValueChanged && qobject_cast<QProgressBar*>(event->object()) != nullptr;
  if (isProgress && !progress.tells(std::chrono::steady_clock::now())) return;
  const auto handler = QAccessible::installUpdateHandler(nullptr);
  QAccessible::updateAccessibility(event);  // as without a handler
  QAccessible::installUpdateHandler(handler);
}

}  // namespace

void prepareAccessibility() {
  QAccessible::installFactory(makeInterface);
  QAccessible::installUpdateHandler(passOn);
}

void announceTick(QListWidget& list, int row) {
  QAccessibleInterface* const rows = QAccessible::queryAccessibleInterface(&list);
  QAccessibleInterface* const told = rows != nullptr ? rows->child(row) : nullptr;
  if (told == nullptr) return;
  QAccessible::State changed;
  changed.checked = true;
  QAccessibleStateChangeEvent event(told, changed);
  QAccessible::updateAccessibility(&event);
}

// SPDX-License-Identifier: Apache-2.0

#include "platform/window/qt/QtRowsAccessible.h"

#include <QAccessibleActionInterface>

namespace {

/// One row, by its place.
class Row : public QAccessibleInterface, public QAccessibleActionInterface {
 public:
  Row(QtRowsAccessible& rows, int row) : rows_(rows), row_(row) {}

  [[nodiscard]] int row() const { return row_; }

  [[nodiscard]] bool isValid() const override { return item() != nullptr; }
  [[nodiscard]] QObject* object() const override { return nullptr; }
  [[nodiscard]] QWindow* window() const override { return rows_.window(); }
  [[nodiscard]] QAccessibleInterface* parent() const override { return &rows_; }
  [[nodiscard]] QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
  [[nodiscard]] QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override { return nullptr; }
  [[nodiscard]] int childCount() const override { return 0; }
  [[nodiscard]] int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }
  [[nodiscard]] QAccessible::Role role() const override { return QAccessible::CheckBox; }
  void setText(QAccessible::Text /*kind*/, const QString& /*text*/) override {}

  [[nodiscard]] QString text(QAccessible::Text kind) const override {
    if (item() == nullptr) return {};
    if (kind == QAccessible::Name) return item()->text();
    return kind == QAccessible::Description ? item()->data(Qt::AccessibleDescriptionRole).toString() : QString();
  }
  [[nodiscard]] QRect rect() const override {
    if (item() == nullptr) return {};
    const QRect place = rows_.list()->visualItemRect(item());
    return {rows_.list()->viewport()->mapToGlobal(place.topLeft()), place.size()};
  }
  [[nodiscard]] QAccessible::State state() const override {
    QAccessible::State state;
    if (item() == nullptr) {
      state.invalid = true;
      return state;
    }
    state.invisible = !rows_.list()->isVisible();
    state.disabled = !rows_.list()->isEnabled();
    state.focusable = state.selectable = state.checkable = true;
    state.checked = item()->checkState() == Qt::Checked;
    state.selected = item()->isSelected();
    state.focused = rows_.list()->hasFocus() && rows_.list()->currentItem() == item();
    return state;
  }

  void* interface_cast(QAccessible::InterfaceType type) override {
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
  }
  [[nodiscard]] QStringList actionNames() const override { return {toggleAction(), setFocusAction()}; }
  void doAction(const QString& name) override {
    if (item() == nullptr || !rows_.list()->isEnabled()) return;
    if (name == setFocusAction()) {
      rows_.list()->setFocus(Qt::OtherFocusReason);
      rows_.list()->setCurrentItem(item());
    } else if (name == toggleAction()) {
      item()->setCheckState(item()->checkState() == Qt::Checked ? Qt::Unchecked : Qt::Checked);
    }
  }
  [[nodiscard]] QStringList keyBindingsForAction(const QString& /*name*/) const override { return {}; }

 private:
  [[nodiscard]] QListWidgetItem* item() const { return rows_.list() != nullptr ? rows_.list()->item(row_) : nullptr; }

  QtRowsAccessible& rows_;
  int row_;
};

}  // namespace

QtRowsAccessible::~QtRowsAccessible() {
  for (const QAccessible::Id row : rows_) QAccessible::deleteAccessibleInterface(row);
}

QAccessibleInterface* QtRowsAccessible::child(int index) const {
  if (index < 0 || index >= childCount()) return nullptr;
  while (rows_.size() <= static_cast<std::size_t>(index)) {
    auto* const row = new Row(const_cast<QtRowsAccessible&>(*this), static_cast<int>(rows_.size()));
    rows_.push_back(QAccessible::registerAccessibleInterface(row));
  }
  return QAccessible::accessibleInterface(rows_[static_cast<std::size_t>(index)]);
}

QAccessibleInterface* QtRowsAccessible::childAt(int x, int y) const {
  if (list() == nullptr) return nullptr;
  const QListWidgetItem* const item = list()->itemAt(list()->viewport()->mapFromGlobal(QPoint(x, y)));
  return item != nullptr ? child(list()->row(item)) : nullptr;
}

int QtRowsAccessible::indexOfChild(const QAccessibleInterface* child) const {
  const auto* const row = dynamic_cast<const Row*>(child);
  return row != nullptr ? row->row() : -1;
}

QAccessibleInterface* QtRowsAccessible::focusChild() const {
  return list() != nullptr && list()->hasFocus() ? child(list()->currentRow()) : nullptr;
}

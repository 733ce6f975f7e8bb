// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QAccessibleWidget>
#include <QListWidget>
#include <vector>

/// A list whose rows a screen reader meets as check boxes, which Qt's own interface of lists can only select.
class QtRowsAccessible : public QAccessibleWidget {
 public:
  explicit QtRowsAccessible(QListWidget& list) : QAccessibleWidget(&list, QAccessible::List) {}
  ~QtRowsAccessible() override;
  QtRowsAccessible(const QtRowsAccessible&) = delete;
  QtRowsAccessible& operator=(const QtRowsAccessible&) = delete;

  [[nodiscard]] QListWidget* list() const { return qobject_cast<QListWidget*>(widget()); }

  [[nodiscard]] int childCount() const override { return list() != nullptr ? list()->count() : 0; }
  [[nodiscard]] QAccessibleInterface* child(int index) const override;
  [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override;
  [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override;
  [[nodiscard]] QAccessibleInterface* focusChild() const override;

 private:
  mutable std::vector<QAccessible::Id> rows_;
};

// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QPointer>
#include <QWidget>
#include <map>
#include <memory>

#include "platform/Toolkit.h"

class QtViews;

/// A widget as a view. Outlives its widget, and then does nothing and is nowhere.
class QtView : public virtual View {
 public:
  QtView(QWidget& widget, std::shared_ptr<QtViews> views) : widget_(&widget), views_(std::move(views)) {}

  [[nodiscard]] QWidget* widget() const { return widget_; }

  /// Showing a view gives the keyboard to the first control in it that takes it.
  void setHidden(bool hidden) override;
  [[nodiscard]] Rect frame() const override;
  void setFrame(const Rect& frame) override;
  /// In a container with a layout the view fills the container; in one without it keeps its frame, and a screen reader
  /// meets what is in it from the top down.
  void addSubview(const std::shared_ptr<View>& view) override;
  [[nodiscard]] std::shared_ptr<View> superview() const override;

 private:
  QPointer<QWidget> widget_;
  std::shared_ptr<QtViews> views_;
};

/// The views of a toolkit's widgets: one for each widget, as long as somebody holds it.
class QtViews : public std::enable_shared_from_this<QtViews> {
 public:
  /// A label is a TextField and an ImageView as well, a list a ListView.
  [[nodiscard]] std::shared_ptr<View> viewOf(QWidget& widget);

 private:
  std::map<const QWidget*, std::weak_ptr<QtView>> views_;
};

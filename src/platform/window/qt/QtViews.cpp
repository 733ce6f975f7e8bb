// SPDX-License-Identifier: Apache-2.0

#include "platform/window/qt/QtViews.h"

#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <algorithm>
#include <utility>

#include "platform/window/qt/QtPicture.h"
#include "platform/window/qt/QtText.h"

namespace {

class LabelView : public QtView, public virtual TextField, public virtual ImageView {
 public:
  using QtView::QtView;

  void setStringValue(const std::string& text) override {
    auto* const label = qobject_cast<QLabel*>(widget());
    if (label == nullptr) return;
    label->setTextFormat(Qt::PlainText);
    label->setText(toQt(text));
  }
  void setFont(bool isBold, TextColour colour) override {
    if (widget() == nullptr) return;
    QFont font = widget()->font();
    font.setBold(isBold);
    widget()->setFont(font);
    widget()->setForegroundRole(colour == TextColour::black ? QPalette::WindowText : QPalette::PlaceholderText);
  }
  void setDescription(const std::string& description) override {
    if (widget() != nullptr) widget()->setAccessibleDescription(toQt(description));
  }
  void setImage(const Picture& image) override {
    if (auto* const label = qobject_cast<QLabel*>(widget())) showPicture(*label, image);
  }
};

class RowsView : public QtView, public virtual ListView {
 public:
  using QtView::QtView;

  void selectRow(std::size_t row) override {
    auto* const list = qobject_cast<QListWidget*>(widget());
    if (list == nullptr) return;
    list->setCurrentRow(row < static_cast<std::size_t>(list->count()) ? static_cast<int>(row) : -1);
  }
};

bool isHiddenOnPurpose(const QWidget& widget) {
  return widget.isHidden() && widget.testAttribute(Qt::WA_WState_ExplicitShowHide);
}

bool takesKeyboard(const QWidget& widget) {
  return (widget.focusPolicy() & Qt::TabFocus) != 0 && widget.isEnabled() && widget.isVisibleTo(widget.window());
}

/// The order of widgets in their parent is that in which a screen reader meets them. None of them lies on another.
void orderFromTheTop(QWidget& container) {
  auto children = container.findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
  std::ranges::stable_sort(children, {}, [](const QWidget* child) { return child->y(); });
  for (QWidget* const child : children) child->raise();
}

/// The first of the view's controls in the order of the tabulator key; null when there is none.
QWidget* firstControl(QWidget& view) {
  const QWidget* const window = view.window();
  for (QWidget* next = window->nextInFocusChain(); next != window; next = next->nextInFocusChain()) {
    if (view.isAncestorOf(next) && takesKeyboard(*next)) return next;
  }
  return nullptr;
}

}  // namespace

void QtView::setHidden(bool hidden) {
  if (widget_ == nullptr) return;
  widget_->setHidden(hidden);
  if (hidden) return;
  const QWidget* const focused = widget_->window()->focusWidget();
  if (focused != nullptr && widget_->isAncestorOf(focused) && takesKeyboard(*focused)) return;
  if (QWidget* const control = firstControl(*widget_)) control->setFocus(Qt::OtherFocusReason);
}

Rect QtView::frame() const {
  if (widget_ == nullptr) return {};
  const QRect place = widget_->geometry();
  const QWidget* const parent = widget_->parentWidget();
  const int bottom = parent != nullptr ? parent->height() - place.y() - place.height() : place.y();
  return {.origin = {.x = static_cast<double>(place.x()), .y = static_cast<double>(bottom)},
          .size = {.width = static_cast<double>(place.width()), .height = static_cast<double>(place.height())}};
}

void QtView::setFrame(const Rect& frame) {
  if (widget_ == nullptr) return;
  const QSize size(qRound(frame.size.width), qRound(frame.size.height));
  const QWidget* const parent = widget_->parentWidget();
  const int bottom = qRound(frame.origin.y);
  // Without a parent there is nothing to turn over; addSubview() does it then.
  const int top = parent != nullptr ? parent->height() - bottom - size.height() : bottom;
  widget_->setGeometry(QRect(QPoint(qRound(frame.origin.x), top), size));
}

void QtView::addSubview(const std::shared_ptr<View>& view) {
  const auto added = std::dynamic_pointer_cast<QtView>(view);
  if (widget_ == nullptr || added == nullptr || added->widget() == nullptr) return;
  QWidget* const child = added->widget();
  if (child == widget_ || child->isAncestorOf(widget_)) return;
  const bool isHidden = isHiddenOnPurpose(*child);
  const Rect frame = added->frame();
  if (auto* const grid = qobject_cast<QGridLayout*>(widget_->layout())) {
    grid->addWidget(child, 0, 0);
  } else if (widget_->layout() != nullptr) {
    widget_->layout()->addWidget(child);
  } else {
    child->setParent(widget_);
    added->setFrame(frame);
  }
  child->setVisible(!isHidden);
  child->raise();
  if (widget_->layout() == nullptr) orderFromTheTop(*widget_);
}

std::shared_ptr<View> QtView::superview() const {
  QWidget* const parent = widget_ != nullptr ? widget_->parentWidget() : nullptr;
  return parent != nullptr ? views_->viewOf(*parent) : nullptr;
}

std::shared_ptr<View> QtViews::viewOf(QWidget& widget) {
  const auto known = views_.find(&widget);
  if (known != views_.end()) {
    const auto view = known->second.lock();
    // Another widget may lie where one that has been destroyed lay.
    if (view != nullptr && view->widget() == &widget) return view;
  }
  std::erase_if(views_, [](const auto& entry) { return entry.second.expired(); });
  std::shared_ptr<QtView> view;
  if (qobject_cast<QLabel*>(&widget) != nullptr) {
    view = std::make_shared<LabelView>(widget, shared_from_this());
  } else if (qobject_cast<QListWidget*>(&widget) != nullptr) {
    view = std::make_shared<RowsView>(widget, shared_from_this());
  } else {
    view = std::make_shared<QtView>(widget, shared_from_this());
  }
  views_[&widget] = view;
  return view;
}

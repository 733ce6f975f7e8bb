// SPDX-License-Identifier: Apache-2.0

#include "platform/window/qt/QtInterface.h"

#include <utility>

#include "platform/window/qt/QtText.h"

QtInterface::~QtInterface() {
  bindings_.reset();
  if (top_ != nullptr && top_->parentWidget() == nullptr) delete top_.data();
}

void QtInterface::connectTo(InterfaceOwner& owner, BindingServices services, BindingResources resources) {
  bindings_ = std::make_unique<QtBindings>(*top_, owner, std::move(services), std::move(resources));
}

QWidget* QtInterface::widget(const std::string& name) const {
  if (top_ == nullptr || name.empty()) return nullptr;
  const QString wanted = toQt(name);
  return top_->objectName() == wanted ? top_.data() : top_->findChild<QWidget*>(wanted);
}

std::shared_ptr<View> QtInterface::view(const std::string& name) const {
  QWidget* const found = widget(name);
  return found != nullptr ? views_->viewOf(*found) : nullptr;
}

std::shared_ptr<Window> QtInterface::window(const std::string& name) const {
  QWidget* const found = widget(name);
  return found != nullptr && found->isWindow() ? windows_.windowOf(*found) : nullptr;
}

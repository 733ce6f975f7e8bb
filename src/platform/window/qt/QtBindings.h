// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QTimer>
#include <map>
#include <memory>
#include <string>

#include "platform/Bundle.h"
#include "platform/window/Bindings.h"

/// What the bindings of an interface take from its bundle.
struct BindingResources {
  const Bundle& bundle;
  std::function<Picture(const std::string& name)> imageNamed;
};

/// Connects the controls of an interface to its owner, as their dynamic properties say: they show its properties, set
/// them, and send its actions. docs/making-an-installer.md lists the names. What a description asks for and does not
/// get costs one line of the log each.
class QtBindings : public QObject {
 public:
  QtBindings(QObject& top, InterfaceOwner& owner, BindingServices services, BindingResources resources);

 private:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void connectControl(QObject& control);
  void connectProperty(QObject& control, const std::string& property, const std::string& value);
  void bind(QObject& control, const std::string& property, const std::string& value);
  void showLocalizedText(QObject& control, const std::string& property, const std::string& key);
  void connectAction(QObject& control, const std::string& action);
  void connectTick(QObject& control, Bindings::Index index);
  void connectRows(QObject& control, Bindings::Index index);
  [[nodiscard]] const std::shared_ptr<BoundControl>& bound(QObject& control);
  void complain(QObject& control, std::string_view what) { bindings_.complain(*bound(control), what); }
  [[nodiscard]] BindingServices withTimer(BindingServices services);

  BindingResources resources_;
  QTimer rest_;  ///< until what changes too fast is caught up with
  std::map<const QObject*, std::shared_ptr<BoundControl>> controls_;
  Bindings bindings_;
};

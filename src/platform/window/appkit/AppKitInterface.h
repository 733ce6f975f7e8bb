// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/Bundle.h"
#include "platform/window/Bindings.h"
#include "platform/window/appkit/AppKitBindings.h"
#include "platform/window/appkit/AppKitBuilder.h"
#include "platform/window/appkit/AppKitControls.h"
#include "platform/window/appkit/AppKitViews.h"
#include "platform/window/appkit/AppKitWindows.h"

/// What an interface takes from its bundle.
struct InterfaceResources {
  const Bundle& bundle;
  std::function<Picture(const std::string& name)> imageNamed;
};

/// What was made from one description. When it goes, so do its connections to its owner.
class AppKitInterface : public Interface {
 public:
  AppKitInterface(BuiltInterface built, AppKitWindows& windows, InterfaceOwner& owner, BindingServices services,
                  InterfaceResources resources);
  ~AppKitInterface() override;
  AppKitInterface(const AppKitInterface&) = delete;
  AppKitInterface& operator=(const AppKitInterface&) = delete;

  [[nodiscard]] std::shared_ptr<View> view(const std::string& name) const override;
  [[nodiscard]] std::shared_ptr<Window> window(const std::string& name) const override;

  [[nodiscard]] const BuiltInterface& built() const { return built_; }

 private:
  void connect(const std::shared_ptr<AppKitControl>& control, const std::string& property, const std::string& value);
  void bind(const std::shared_ptr<AppKitControl>& control, const std::string& property, const std::string& value);
  void connectTick(id object, Bindings::Index index);
  void connectAction(const std::shared_ptr<AppKitControl>& control, const std::string& action);
  /// Has the object call this when it is pressed or chosen.
  void setAction(id object, std::function<void()> action);
  [[nodiscard]] BindingServices withTimer(BindingServices services);

  BuiltInterface built_;
  AppKitWindows& windows_;
  InterfaceResources resources_;
  std::shared_ptr<ViewEvents> events_ = std::make_shared<ViewEvents>();
  std::vector<ObjectReference<InstallerAction>> actions_;
  ObjectReference<InstallerAction> rest_;  ///< after a while, catches up with what changes too fast
  Bindings bindings_;
};

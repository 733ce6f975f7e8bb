// SPDX-License-Identifier: Apache-2.0

#include "platform/window/appkit/AppKitInterface.h"

#include <utility>

#include "platform/window/appkit/AppKitPicture.h"
#include "platform/window/appkit/AppKitRows.h"

AppKitInterface::AppKitInterface(BuiltInterface built, AppKitWindows& windows, InterfaceOwner& owner,
                                 BindingServices services, InterfaceResources resources)
    : built_(std::move(built)),
      windows_(windows),
      resources_(std::move(resources)),
      rest_([[InstallerAction alloc] initWithAction:[this] { bindings_.catchUp(); }]),
      bindings_(owner, withTimer(std::move(services))) {
  for (const auto& [name, named] : built_.objects) {
    const auto control = std::make_shared<AppKitControl>(named.object.get(), name);
    for (const auto& [property, value] : named.connections) connect(control, property, value);
  }
  events_->shown = [this] { bindings_.catchUp(); };
  bindings_.showAll();
}

AppKitInterface::~AppKitInterface() {
  events_->shown = [] {};
  [NSObject cancelPreviousPerformRequestsWithTarget:rest_.get()];
  for (const auto& [name, named] : built_.objects) {
    id const object = named.object.get();
    if ([object isKindOfClass:[NSControl class]] || [object isKindOfClass:[NSMenuItem class]]) [object setTarget:nil];
    if (![object isKindOfClass:[NSView class]]) continue;
    NSView* const inner = innerView(object);
    if ([inner isKindOfClass:[InstallerTable class]]) [(InstallerTable*)inner setTicked:[](std::size_t, bool) {}];
    if ([inner isKindOfClass:[InstallerTextView class]]) [(InstallerTextView*)inner setTyped:[](const std::string&) {}];
  }
}

BindingServices AppKitInterface::withTimer(BindingServices services) {
  services.catchUpAfter = [this](std::chrono::milliseconds time) {
    const std::chrono::duration<double> seconds = time;
    const id modes[] = {NSDefaultRunLoopMode, NSModalPanelRunLoopMode};
    [NSObject cancelPreviousPerformRequestsWithTarget:rest_.get()];
    [rest_.get() performSelector:@selector(perform:)
                      withObject:nil
                      afterDelay:seconds.count()
                         inModes:[NSArray arrayWithObjects:modes count:2]];
  };
  return services;
}

void AppKitInterface::connect(const std::shared_ptr<AppKitControl>& control, const std::string& property,
                              const std::string& value) {
  if (property == "action") {
    connectAction(control, value);
  } else if (property == "imageName") {
    const Picture picture = resources_.imageNamed(value);
    if (picture == nullptr) return bindings_.complain(*control, "no picture named " + value);
    const ShowValue show = makeBinding("bindImage", control->object(), nullptr);
    if (show) show(picture);
  } else if (property == "sets") {
    bindings_.setOnce(*control, value);
  } else if (property.starts_with("bind")) {
    bind(control, property, value);
  } else if (property == "textKey" || property == "nameKey") {
    const ShowValue show = makeBinding(property == "textKey" ? "bindText" : "bindName", control->object(), nullptr);
    if (!show) return bindings_.complain(*control, "has no " + property);
    show(resources_.bundle.localizedString(value));
  }
}

void AppKitInterface::bind(const std::shared_ptr<AppKitControl>& control, const std::string& property,
                           const std::string& value) {
  id const object = control->object();
  ShowValue show = makeBinding(property, object, [this] { return resources_.imageNamed("GenericApplication"); });
  if (!show) return bindings_.complain(*control, "has no " + property);
  if (property == "bindVisible") {
    // What was behind while it was hidden.
    show = [this, control, shown = std::move(show)](const ShownValue& visible) {
      const bool isShown = shown(visible);
      if (!control->isOnHiddenPage()) bindings_.catchUp(control.get());
      return isShown;
    };
  }
  const Bindings::Index index = bindings_.bind(control, property, value, std::move(show));
  if (property == "bindTicked") connectTick(object, index);
  NSView* const inner = [object isKindOfClass:[NSView class]] ? innerView(object) : nil;
  if (property == "bindRows") {
    [(InstallerTable*)inner setTicked:[this, index](std::size_t row, bool isTicked) {
      bindings_.setTicked(index, row, isTicked);
      bindings_.show(index);
    }];
  }
  if ([inner isKindOfClass:[InstallerTextView class]] && property == "bindText") {
    [(InstallerTextView*)inner setTyped:[this, control](const std::string& text) { bindings_.typed(text, *control); }];
  }
}

void AppKitInterface::connectTick(id object, Bindings::Index index) {
  setAction(object, [this, object, index] { bindings_.setFlag(index, [object state] == NSOnState); });
}

void AppKitInterface::connectAction(const std::shared_ptr<AppKitControl>& control, const std::string& action) {
  id const object = control->object();
  const bool isSender = [object isKindOfClass:[NSButton class]] || [object isKindOfClass:[NSMenuItem class]];
  if (!isSender) return bindings_.complain(*control, "sends no actions");
  setAction(object, [this, action, control] { bindings_.perform(action, *control); });
}

void AppKitInterface::setAction(id object, std::function<void()> action) {
  actions_.emplace_back([[InstallerAction alloc] initWithAction:std::move(action)]);
  [object setTarget:actions_.back().get()];
  [object setAction:@selector(perform:)];
}

std::shared_ptr<View> AppKitInterface::view(const std::string& name) const {
  id const found = built_.find(name);
  return [found isKindOfClass:[NSView class]] ? viewOf(found, events_) : nullptr;
}

std::shared_ptr<Window> AppKitInterface::window(const std::string& name) const {
  id const found = built_.find(name);
  return [found isKindOfClass:[NSWindow class]] ? windows_.windowOf(found) : nullptr;
}

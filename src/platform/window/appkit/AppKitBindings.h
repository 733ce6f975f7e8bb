// SPDX-License-Identifier: Apache-2.0

#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <string>

#include "platform/window/Bindings.h"

/// A view, a window, a menu or an item of one.
class AppKitControl : public BoundControl {
 public:
  /// Does not hold it: the bindings and what they show belong to one interface.
  AppKitControl(id control, std::string name) : control_(control), name_(std::move(name)) {}

  [[nodiscard]] id object() const { return control_; }
  [[nodiscard]] std::string name() const override { return name_; }
  [[nodiscard]] bool exists() const override { return true; }
  [[nodiscard]] bool isOnHiddenPage() const override;

 private:
  id control_;
  std::string name_;
};

/// The binding with the name (bindText, bindEnabled, …) for the control; empty when there is none of that name for that
/// kind of control.
[[nodiscard]] ShowValue makeBinding(const std::string& name, id control,
                                    const std::function<Picture()>& genericPicture);

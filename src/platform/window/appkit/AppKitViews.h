// SPDX-License-Identifier: Apache-2.0

#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <memory>

#include "platform/Toolkit.h"
#include "platform/window/appkit/ObjectReference.h"

/// What all views of a window know.
struct ViewEvents {
  std::function<void()> shown;  ///< called when something that was hidden is shown
};

/// Any view, and what an outlet of its kind can do.
class AppKitView : public virtual View {
 public:
  AppKitView(NSView* view, std::shared_ptr<ViewEvents> events) : view_([view retain]), events_(std::move(events)) {}

  void setHidden(bool hidden) override;
  [[nodiscard]] Rect frame() const override;
  void setFrame(const Rect& frame) override;
  void addSubview(const std::shared_ptr<View>& view) override;
  [[nodiscard]] std::shared_ptr<View> superview() const override;

  [[nodiscard]] NSView* view() const { return view_.get(); }

 private:
  ObjectReference<NSView> view_;
  std::shared_ptr<ViewEvents> events_;
};

[[nodiscard]] std::shared_ptr<View> viewOf(NSView* view, const std::shared_ptr<ViewEvents>& events);

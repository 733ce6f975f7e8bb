// SPDX-License-Identifier: Apache-2.0

#include "platform/window/appkit/AppKitViews.h"

#include "platform/window/appkit/AppKitControls.h"
#include "platform/window/appkit/AppKitPicture.h"

namespace {

class LabelView : public AppKitView, public virtual TextField, public virtual ImageView {
 public:
  using AppKitView::AppKitView;

  void setStringValue(const std::string& text) override {
    if (NSString* const shown = toObject(text)) [label() showText:shown];
    layOutAround(label());
  }
  void setFont(bool isBold, TextColour colour) override {
    [label() setFont:isBold ? [NSFont boldSystemFontOfSize:usualTextSize] : [NSFont systemFontOfSize:usualTextSize]];
    [label()
        setTextColour:colour == TextColour::black ? [NSColor controlTextColor] : [NSColor disabledControlTextColor]];
  }
  void setDescription(const std::string& description) override {
    if (NSString* const said = toObject(description)) [label() setAccessibilityValueDescription:said];
  }
  void setImage(const Picture& image) override { [label() showPicture:imageOf(image)]; }

 private:
  [[nodiscard]] InstallerLabel* label() const { return (InstallerLabel*)view(); }
};

class RowsView : public AppKitView, public virtual ListView {
 public:
  using AppKitView::AppKitView;

  void selectRow(std::size_t row) override {
    NSTableView* const table = (NSTableView*)innerView(view());
    const bool exists = row < static_cast<std::size_t>([table numberOfRows]);
    if (!exists) return [table deselectAll:nil];
    [table selectRowIndexes:[NSIndexSet indexSetWithIndex:row] byExtendingSelection:NO];
    [table scrollRowToVisible:static_cast<NSInteger>(row)];
  }
};

/// The first control in the view that takes the keyboard; nil when there is none.
NSView* firstControl(NSView* view) {
  NSView* const inner = innerView(view);
  if (inner != view || [inner isKindOfClass:[NSControl class]]) return [inner acceptsFirstResponder] ? inner : nil;
  NSArray* const views = [view subviews];
  for (NSUInteger i = 0; i < [views count]; ++i) {
    if (NSView* const found = firstControl([views objectAtIndex:i])) return found;
  }
  return nil;
}

}  // namespace

void AppKitView::setHidden(bool hidden) {
  [view() setHidden:hidden];
  layOutAround(view());
  if (hidden) return;
  events_->shown();
  NSWindow* const window = [view() window];
  NSView* const control = window != nil ? firstControl(view()) : nil;
  if (control != nil) [window makeFirstResponder:control];
}

Rect AppKitView::frame() const {
  const NSRect frame = [view() frame];
  return {.origin = {.x = frame.origin.x, .y = frame.origin.y},
          .size = {.width = frame.size.width, .height = frame.size.height}};
}

void AppKitView::setFrame(const Rect& frame) {
  [view() setFrame:NSMakeRect(frame.origin.x, frame.origin.y, frame.size.width, frame.size.height)];
}

void AppKitView::addSubview(const std::shared_ptr<View>& view) {
  const auto added = std::dynamic_pointer_cast<AppKitView>(view);
  if (added == nullptr || added->view() == this->view() || [this->view() isDescendantOf:added->view()]) return;
  [this->view() addSubview:added->view()];
  const bool isFilled =
      [this->view() isKindOfClass:[InstallerView class]] && [(InstallerView*)this->view() isFilledBySubviews];
  if (isFilled) [added->view() setFrame:[this->view() bounds]];
}

std::shared_ptr<View> AppKitView::superview() const {
  NSView* const holder = [view() superview];
  return holder != nil ? viewOf(holder, events_) : nullptr;
}

std::shared_ptr<View> viewOf(NSView* view, const std::shared_ptr<ViewEvents>& events) {
  if ([view isKindOfClass:[InstallerLabel class]]) return std::make_shared<LabelView>(view, events);
  if ([innerView(view) isKindOfClass:[NSTableView class]]) return std::make_shared<RowsView>(view, events);
  return std::make_shared<AppKitView>(view, events);
}

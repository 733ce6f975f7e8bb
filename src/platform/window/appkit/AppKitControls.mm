// SPDX-License-Identifier: Apache-2.0

#include "platform/window/appkit/AppKitControls.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

@implementation InstallerAction
- (instancetype)initWithAction:(std::function<void()>)action {
  self = [super init];
  if (self != nil) action_ = new std::function<void()>(std::move(action));
  return self;
}
- (void)dealloc {
  delete action_;
  [super dealloc];
}
- (void)perform:(id)sender {
  [[self retain] autorelease];  // the action may end the window
  const std::function<void()> action = *action_;
  action();
}
@end

@implementation InstallerView
- (void)dealloc {
  delete layout_;
  [super dealloc];
}
- (void)setLayout:(std::unique_ptr<LayoutItem>)layout {
  delete std::exchange(layout_, layout.release());
}
- (LayoutItem*)layout {
  return layout_;
}
- (BOOL)isFilledBySubviews {
  return layout_ != nullptr;
}
- (void)resizeSubviewsWithOldSize:(NSSize)oldSize {
  if (layout_ == nullptr) {
    [super resizeSubviewsWithOldSize:oldSize];
    return;
  }
  const NSSize size = [self bounds].size;
  layout_->place({.origin = {}, .size = {.width = size.width, .height = size.height}});
  // What was put in later fills the view.
  if (!layout_->isHidden()) return;
  NSArray* const views = [self subviews];
  for (NSUInteger i = 0; i < [views count]; ++i) [[views objectAtIndex:i] setFrame:[self bounds]];
}
@end

namespace {

bool isScrolled(NSView* view) { return [view isKindOfClass:[NSScrollView class]]; }

/// What a control asks for, with the room that captions have around them on a Mac.
Size sizeOfControl(NSControl* control) {
  const NSSize wanted = [[control cell] cellSize];
  const bool isButton = [control isKindOfClass:[NSButton class]];
  constexpr double roomForCaption = 28;
  constexpr double smallestButton = 82;
  const bool isPush = isButton && [(NSButton*)control isBordered];
  return {.width =
              isPush ? std::max(smallestButton, std::ceil(wanted.width) + roomForCaption) : std::ceil(wanted.width) + 2,
          .height = std::max(std::ceil(wanted.height), isPush ? 26.0 : 18.0)};
}

}  // namespace

Size ViewItem::wantedSize(double width) const {
  NSView* const view = view_.get();
  if ([view isKindOfClass:[InstallerLabel class]]) {
    const NSSize size = [(InstallerLabel*)view sizeForWidth:width];
    return {.width = limits_.isIgnored ? 0 : size.width, .height = size.height};
  }
  if ([view isKindOfClass:[InstallerView class]]) {
    const LayoutItem* const layout = [(InstallerView*)view layout];
    return layout != nullptr ? layout->sizeFor(width) : Size{};
  }
  if (isScrolled(view)) return {.width = 120, .height = 60};
  if ([view isKindOfClass:[NSProgressIndicator class]]) return {.width = 120, .height = 14};
  return [view isKindOfClass:[NSControl class]] ? sizeOfControl((NSControl*)view) : Size{};
}

Size ViewItem::sizeFor(double width) const {
  return smaller(larger(wantedSize(width), limits_.smallest), limits_.largest);
}

Size ViewItem::smallest() const {
  return growsAcross() || growsDown() ? larger({}, limits_.smallest) : sizeFor(anyWidth);
}

bool ViewItem::growsAcross() const { return limits_.growsAcross || limits_.isIgnored; }

void ViewItem::place(const Rect& rect) {
  NSView* const view = view_.get();
  NSView* const holder = [view superview];
  if (holder == nil) return;
  Size size = smaller(larger(rect.size, {}), limits_.largest);
  if (limits_.isAtTop) size.height = sizeFor(size.width).height;
  const double height = [holder bounds].size.height;
  [view setFrame:NSMakeRect(rect.origin.x, height - rect.origin.y - size.height, size.width, size.height)];
}

void layOutAround(NSView* view) {
  // From the outside in: whoever gets another size lays out anew by itself, and the others are on the way.
  std::vector<InstallerView*> holders;
  for (NSView* at = view; at != nil; at = [at superview]) {
    if ([at isKindOfClass:[InstallerView class]]) holders.push_back((InstallerView*)at);
  }
  for (auto holder = holders.rbegin(); holder != holders.rend(); ++holder) {
    [*holder resizeSubviewsWithOldSize:[*holder bounds].size];
    [*holder setNeedsDisplay:YES];
  }
}

NSView* innerView(NSView* view) { return isScrolled(view) ? [(NSScrollView*)view documentView] : view; }

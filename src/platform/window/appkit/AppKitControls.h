// SPDX-License-Identifier: Apache-2.0

#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/window/DescribedLayout.h"
#include "platform/window/appkit/ObjectReference.h"

/// Size of the texts of a window, in points.
inline constexpr double usualTextSize = 13;

/// Does something when a control or an item of a menu sends its action.
@interface InstallerAction : NSObject {
 @private
  std::function<void()>* action_;
}
- (instancetype)initWithAction:(std::function<void()>)action;
- (void)perform:(id)sender;
@end

/// Holds other views in a layout, if it has one.
@interface InstallerView : NSView {
 @private
  LayoutItem* layout_;
}
- (void)setLayout:(std::unique_ptr<LayoutItem>)layout;
- (LayoutItem*)layout;
/// Whether what is put into it fills it.
- (BOOL)isFilledBySubviews;
@end

/// A text or a picture, whichever it was given last.
@interface InstallerLabel : NSView {
 @private
  NSTextField* text_;
  NSImageView* picture_;
  BOOL wraps_;
  CGFloat margin_;
}
- (void)setWraps:(BOOL)wraps;
- (void)setMargin:(CGFloat)margin;
- (void)showText:(NSString*)text;
- (void)showPicture:(NSImage*)picture;
- (void)setFont:(NSFont*)font;
- (void)setTextColour:(NSColor*)colour;
- (NSString*)shownText;
- (NSImage*)shownPicture;
- (NSSize)sizeForWidth:(CGFloat)width;
@end

/// A text that is only read. Keys that would change it are told instead; the return key is used up by that.
@interface InstallerTextView : NSTextView {
 @private
  std::function<void(const std::string&)>* typed_;
}
- (void)setTyped:(std::function<void(const std::string&)>)typed;
@end

/// Its place in a layout.
class ViewItem : public LayoutItem {
 public:
  ViewItem(NSView* view, const Limits& limits) : view_([view retain]), limits_(limits) {}

  [[nodiscard]] bool isHidden() const override { return [view_.get() isHidden]; }
  [[nodiscard]] Size sizeFor(double width) const override;
  [[nodiscard]] Size smallest() const override;
  [[nodiscard]] bool growsAcross() const override;
  [[nodiscard]] bool growsDown() const override { return limits_.growsDown; }
  void place(const Rect& rect) override;

 private:
  [[nodiscard]] Size wantedSize(double width) const;

  ObjectReference<NSView> view_;
  Limits limits_;
};

/// Places everything in the view's window again, after something has changed its size.
void layOutAround(NSView* view);

/// The view inside a scroll view, or the view itself.
[[nodiscard]] NSView* innerView(NSView* view);

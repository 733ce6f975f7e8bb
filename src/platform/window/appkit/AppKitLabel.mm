// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <cmath>

#include "platform/window/Typography.h"
#include "platform/window/appkit/AppKitControls.h"

@implementation InstallerLabel
- (void)dealloc {
  [text_ release];
  [picture_ release];
  [super dealloc];
}
- (void)setWraps:(BOOL)wraps {
  wraps_ = wraps;
}
- (void)setMargin:(CGFloat)margin {
  margin_ = margin;
}
- (NSTextField*)text {
  if (text_ == nil) {
    text_ = [[NSTextField alloc] initWithFrame:NSMakeRect(0, 0, 1, 1)];
    [text_ setEditable:NO];
    [text_ setSelectable:NO];
    [text_ setBezeled:NO];
    [text_ setBordered:NO];
    [text_ setDrawsBackground:NO];
    [text_ setFont:[NSFont systemFontOfSize:usualTextSize]];
    [text_ setTextColor:[NSColor controlTextColor]];
    [[text_ cell] setWraps:wraps_];
    [[text_ cell] setLineBreakMode:wraps_ ? NSLineBreakByWordWrapping : NSLineBreakByTruncatingMiddle];
    [self addSubview:text_];
    [self resizeSubviewsWithOldSize:[self bounds].size];
  }
  return text_;
}
- (void)showText:(NSString*)text {
  [picture_ setHidden:YES];
  [[self text] setHidden:NO];
  [[self text] setStringValue:wraps_ ? toObject(withNumbersKeptToWords(toText(text))) : text];
  // All of a text that is cut.
  if (!wraps_) [text_ setToolTip:text];
}
- (void)showPicture:(NSImage*)picture {
  if (picture_ == nil) {
    picture_ = [[NSImageView alloc] initWithFrame:[self bounds]];
    [picture_ setImageScaling:NSImageScaleProportionallyUpOrDown];
    [picture_ setImageAlignment:NSImageAlignCenter];
    [self addSubview:picture_];
  }
  [text_ setHidden:YES];
  [picture_ setHidden:NO];
  [picture_ setImage:picture];
}
- (void)setFont:(NSFont*)font {
  [[self text] setFont:font];
}
- (void)setTextColour:(NSColor*)colour {
  [[self text] setTextColor:colour];
}
- (NSString*)shownText {
  return text_ != nil && ![text_ isHidden] ? [text_ stringValue] : @"";
}
- (NSImage*)shownPicture {
  return [picture_ isHidden] ? nil : [picture_ image];
}
- (NSSize)sizeForWidth:(CGFloat)width {
  if (text_ == nil || [text_ isHidden]) return [picture_ image] != nil ? [[picture_ image] size] : NSMakeSize(0, 0);
  const CGFloat inner = std::max<CGFloat>(width - 2 * margin_, 1);
  const NSSize size = [[text_ cell] cellSizeForBounds:NSMakeRect(0, 0, inner, 10000)];
  return NSMakeSize(std::ceil(std::min(size.width, inner)) + 2 * margin_, std::ceil(size.height) + 2 * margin_);
}
- (void)resizeSubviewsWithOldSize:(NSSize)oldSize {
  const NSSize size = [self bounds].size;
  [text_ setFrame:NSMakeRect(margin_, margin_, std::max<CGFloat>(size.width - 2 * margin_, 0),
                             std::max<CGFloat>(size.height - 2 * margin_, 0))];
  [picture_ setFrame:[self bounds]];
}
@end

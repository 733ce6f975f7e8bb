// SPDX-License-Identifier: Apache-2.0

// Views and controls of AppKit, as far as the program uses them. For AppKit.h.
#pragma once

#include <Foundation/Foundation.h>

@class NSBitmapImageRep;
@class NSCell;
@class NSEvent;
@class NSView;
@class NSWindow;

extern "C" NSString* const NSFontAttributeName;
extern "C" NSString* const NSForegroundColorAttributeName;
extern "C" NSString* const NSParagraphStyleAttributeName;
extern "C" NSString* const NSUnderlineStyleAttributeName;

enum { NSUnderlineStyleSingle = 1 };
enum { NSItalicFontMask = 1 };
enum { NSViewWidthSizable = 2 };
enum { NSNoBorder = 0, NSBezelBorder = 2 };
enum { NSOffState = 0, NSOnState = 1 };
enum { NSSwitchButton = 3, NSMomentaryPushInButton = 7 };
enum { NSRoundedBezelStyle = 1 };
enum { NSImageAlignCenter = 0 };
enum { NSImageScaleProportionallyUpOrDown = 3 };
enum { NSLineBreakByWordWrapping = 0, NSLineBreakByTruncatingMiddle = 5 };
typedef NSUInteger NSTextAlignment;
#ifdef __x86_64__
enum { NSRightTextAlignment = 1, NSCenterTextAlignment = 2 };
#else
enum { NSCenterTextAlignment = 1, NSRightTextAlignment = 2 };
#endif
enum { NSJustifiedTextAlignment = 3, NSNaturalTextAlignment = 4 };

@interface NSColor : NSObject
+ (NSColor*)controlTextColor;
+ (NSColor*)disabledControlTextColor;
+ (NSColor*)textColor;
+ (NSColor*)colorWithCalibratedRed:(CGFloat)red green:(CGFloat)green blue:(CGFloat)blue alpha:(CGFloat)alpha;
@end

@interface NSFont : NSObject
+ (NSFont*)systemFontOfSize:(CGFloat)size;
+ (NSFont*)boldSystemFontOfSize:(CGFloat)size;
@end

@interface NSFontManager : NSObject
+ (NSFontManager*)sharedFontManager;
- (NSFont*)convertFont:(NSFont*)font toHaveTrait:(NSUInteger)trait;
@end

@interface NSParagraphStyle : NSObject
@end

@interface NSMutableParagraphStyle : NSParagraphStyle
- (void)setAlignment:(NSTextAlignment)alignment;
- (void)setFirstLineHeadIndent:(CGFloat)indent;
- (void)setHeadIndent:(CGFloat)indent;
- (void)setParagraphSpacing:(CGFloat)space;
- (void)setLineHeightMultiple:(CGFloat)multiple;
- (void)setLineBreakMode:(NSUInteger)mode;
@end

@interface NSImage : NSObject
- (instancetype)initWithData:(NSData*)data;
- (NSSize)size;
@end

@interface NSResponder : NSObject
- (BOOL)acceptsFirstResponder;
- (void)keyDown:(NSEvent*)event;
@end

@interface NSView : NSResponder
- (instancetype)initWithFrame:(NSRect)frame;
- (NSRect)frame;
- (NSRect)bounds;
- (void)setFrame:(NSRect)frame;
- (void)setFrameSize:(NSSize)size;
- (void)setHidden:(BOOL)isHidden;
- (BOOL)isHidden;
- (BOOL)isHiddenOrHasHiddenAncestor;
- (NSView*)superview;
- (NSArray*)subviews;
- (void)addSubview:(NSView*)view;
- (BOOL)isDescendantOf:(NSView*)view;
- (NSWindow*)window;
- (void)resizeSubviewsWithOldSize:(NSSize)size;
- (void)setAutoresizingMask:(NSUInteger)mask;
- (void)setNeedsDisplay:(BOOL)needs;
- (void)setNextKeyView:(NSView*)view;
- (void)setToolTip:(NSString*)text;
- (void)setAccessibilityLabel:(NSString*)text;
- (void)setAccessibilityValueDescription:(NSString*)text;
@end

@interface NSScrollView : NSView
- (NSView*)documentView;
- (void)setDocumentView:(NSView*)view;
- (void)setHasVerticalScroller:(BOOL)has;
- (void)setHasHorizontalScroller:(BOOL)has;
- (void)setAutohidesScrollers:(BOOL)hides;
- (void)setBorderType:(NSUInteger)type;
- (void)setDrawsBackground:(BOOL)draws;
@end

@interface NSCell : NSObject
- (NSSize)cellSize;
- (NSSize)cellSizeForBounds:(NSRect)bounds;
- (void)setWraps:(BOOL)wraps;
- (void)setLineBreakMode:(NSUInteger)mode;
- (void)setEditable:(BOOL)isEditable;
@end
@interface NSActionCell : NSCell
@end
@interface NSButtonCell : NSActionCell
- (void)setButtonType:(NSUInteger)type;
- (void)setTitle:(NSString*)title;
@end
@interface NSTextFieldCell : NSActionCell
@end
@interface NSImageCell : NSCell
@end

@interface NSControl : NSView
- (id)cell;
- (void)setEnabled:(BOOL)isEnabled;
- (void)setFont:(NSFont*)font;
- (NSString*)stringValue;
- (void)setStringValue:(NSString*)text;
- (void)setTarget:(id)target;
- (void)setAction:(SEL)action;
@end

@interface NSButton : NSControl
- (void)setTitle:(NSString*)title;
- (void)setButtonType:(NSUInteger)type;
- (void)setBezelStyle:(NSUInteger)style;
- (void)setKeyEquivalent:(NSString*)key;
- (BOOL)isBordered;
- (NSInteger)state;
- (void)setState:(NSInteger)state;
@end

@interface NSTextField : NSControl
- (void)setEditable:(BOOL)isEditable;
- (void)setSelectable:(BOOL)isSelectable;
- (void)setBezeled:(BOOL)isBezeled;
- (void)setBordered:(BOOL)isBordered;
- (void)setDrawsBackground:(BOOL)draws;
- (void)setTextColor:(NSColor*)colour;
@end

@interface NSImageView : NSControl
- (NSImage*)image;
- (void)setImage:(NSImage*)image;
- (void)setImageAlignment:(NSUInteger)alignment;
- (void)setImageScaling:(NSUInteger)scaling;
@end

@interface NSProgressIndicator : NSView
- (void)setIndeterminate:(BOOL)isIndeterminate;
- (void)setMinValue:(double)value;
- (void)setMaxValue:(double)value;
- (void)setDoubleValue:(double)value;
- (void)startAnimation:(id)sender;
- (void)stopAnimation:(id)sender;
@end

@interface NSTextContainer : NSObject
- (void)setWidthTracksTextView:(BOOL)tracks;
@end

@interface NSTextStorage : NSMutableAttributedString
@end

@interface NSText : NSView
- (void)setEditable:(BOOL)isEditable;
- (void)setSelectable:(BOOL)isSelectable;
- (void)setDrawsBackground:(BOOL)draws;
- (void)setVerticallyResizable:(BOOL)isResizable;
- (void)setHorizontallyResizable:(BOOL)isResizable;
- (void)setMaxSize:(NSSize)size;
- (void)scrollRangeToVisible:(NSRange)range;
@end

@interface NSTextView : NSText
- (NSTextContainer*)textContainer;
- (NSTextStorage*)textStorage;
- (void)setTextContainerInset:(NSSize)inset;
- (void)insertTab:(id)sender;
- (void)insertBacktab:(id)sender;
@end

@interface NSTableColumn : NSObject
- (instancetype)initWithIdentifier:(NSString*)identifier;
- (id)identifier;
- (void)setWidth:(CGFloat)width;
- (void)setDataCell:(NSCell*)cell;
@end

@interface NSTableView : NSControl
- (void)addTableColumn:(NSTableColumn*)column;
- (void)setHeaderView:(NSView*)view;
- (void)setRowHeight:(CGFloat)height;
- (void)setAllowsMultipleSelection:(BOOL)allows;
- (void)setDataSource:(id)source;
- (void)setDelegate:(id)delegate;
- (void)reloadData;
- (NSInteger)numberOfRows;
- (NSInteger)selectedRow;
- (void)selectRowIndexes:(NSIndexSet*)rows byExtendingSelection:(BOOL)extends;
- (void)deselectAll:(id)sender;
- (void)scrollRowToVisible:(NSInteger)row;
@end

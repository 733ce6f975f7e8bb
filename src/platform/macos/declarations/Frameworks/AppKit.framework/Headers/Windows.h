// SPDX-License-Identifier: Apache-2.0

// Windows, menus and panels of AppKit, as far as the program uses them. For AppKit.h.
#pragma once

#include <AppKit/Views.h>

@class NSApplication;

extern "C" NSApplication* NSApp;
extern "C" NSString* const NSEventTrackingRunLoopMode;
extern "C" NSString* const NSModalPanelRunLoopMode;

enum { NSTitledWindowMask = 1, NSClosableWindowMask = 2, NSMiniaturizableWindowMask = 4 };
enum { NSBackingStoreBuffered = 2 };
enum { NSApplicationDefined = 15 };
enum { NSControlKeyMask = 1 << 18, NSAlternateKeyMask = 1 << 19, NSCommandKeyMask = 1 << 20 };
enum { NSTerminateCancel = 0 };
enum { NSAlertFirstButtonReturn = 1000 };
enum { NSWarningAlertStyle = 0, NSInformationalAlertStyle = 1 };

@interface NSEvent : NSObject
+ (NSEvent*)otherEventWithType:(NSUInteger)type
                      location:(NSPoint)location
                 modifierFlags:(NSUInteger)flags
                     timestamp:(NSTimeInterval)time
                  windowNumber:(NSInteger)window
                       context:(id)context
                       subtype:(short)subtype
                         data1:(NSInteger)data1
                         data2:(NSInteger)data2;
- (NSUInteger)modifierFlags;
- (NSString*)characters;
@end

@interface NSWindow : NSResponder
- (instancetype)initWithContentRect:(NSRect)rect
                          styleMask:(NSUInteger)style
                            backing:(NSUInteger)backing
                              defer:(BOOL)defers;
- (NSView*)contentView;
- (void)setContentView:(NSView*)view;
- (void)setReleasedWhenClosed:(BOOL)isReleased;
- (void)setTitle:(NSString*)title;
- (void)setDelegate:(id)delegate;
- (NSWindow*)attachedSheet;
- (BOOL)makeFirstResponder:(NSResponder*)responder;
- (void)selectNextKeyView:(id)sender;
- (void)selectPreviousKeyView:(id)sender;
- (void)makeKeyAndOrderFront:(id)sender;
- (void)orderOut:(id)sender;
- (void)center;
- (void)close;
- (void)displayIfNeeded;
- (void)performClose:(id)sender;
- (void)performMiniaturize:(id)sender;
@end

@class NSMenu;

@interface NSMenuItem : NSObject
+ (NSMenuItem*)separatorItem;
- (instancetype)initWithTitle:(NSString*)title action:(SEL)action keyEquivalent:(NSString*)key;
- (void)setTitle:(NSString*)title;
- (void)setTarget:(id)target;
- (void)setAction:(SEL)action;
- (void)setEnabled:(BOOL)isEnabled;
- (void)setHidden:(BOOL)isHidden;
- (NSInteger)state;
- (void)setState:(NSInteger)state;
- (NSMenu*)submenu;
- (void)setSubmenu:(NSMenu*)menu;
- (void)setKeyEquivalentModifierMask:(NSUInteger)mask;
@end

@interface NSMenu : NSObject
- (instancetype)initWithTitle:(NSString*)title;
- (void)setTitle:(NSString*)title;
- (void)addItem:(NSMenuItem*)item;
- (void)insertItem:(NSMenuItem*)item atIndex:(NSInteger)index;
- (NSMenuItem*)itemAtIndex:(NSInteger)index;
- (NSInteger)numberOfItems;
- (void)setAutoenablesItems:(BOOL)enables;
@end

@interface NSDockTile : NSObject
- (NSSize)size;
- (void)setContentView:(NSView*)view;
- (void)display;
@end

@interface NSApplication : NSResponder
+ (NSApplication*)sharedApplication;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy;
- (void)activateIgnoringOtherApps:(BOOL)ignores;
- (void)setDelegate:(id)delegate;
- (void)setMainMenu:(NSMenu*)menu;
- (void)setWindowsMenu:(NSMenu*)menu;
- (NSArray*)windows;
- (NSWindow*)keyWindow;
- (NSDockTile*)dockTile;
- (NSImage*)applicationIconImage;
- (NSEvent*)nextEventMatchingMask:(NSUInteger)mask
                        untilDate:(NSDate*)limit
                           inMode:(NSString*)mode
                          dequeue:(BOOL)dequeues;
- (void)sendEvent:(NSEvent*)event;
- (void)postEvent:(NSEvent*)event atStart:(BOOL)isFirst;
- (void)updateWindows;
- (void)run;
- (void)stop:(id)sender;
- (void)stopModal;
- (void)stopModalWithCode:(NSInteger)code;
- (NSInteger)runModalForWindow:(NSWindow*)window;
- (void)hide:(id)sender;
- (void)hideOtherApplications:(id)sender;
- (void)unhideAllApplications:(id)sender;
@end

@interface NSAlert : NSObject
- (void)setMessageText:(NSString*)text;
- (void)setInformativeText:(NSString*)text;
- (void)setAlertStyle:(NSUInteger)style;
- (void)setIcon:(NSImage*)image;
- (NSButton*)addButtonWithTitle:(NSString*)title;
- (NSWindow*)window;
- (NSInteger)runModal;
- (void)beginSheetModalForWindow:(NSWindow*)window
                   modalDelegate:(id)delegate
                  didEndSelector:(SEL)selector
                     contextInfo:(void*)context;
@end

@interface NSSavePanel : NSWindow
- (void)setMessage:(NSString*)text;
- (void)setPrompt:(NSString*)text;
- (void)setCanCreateDirectories:(BOOL)can;
- (void)setTreatsFilePackagesAsDirectories:(BOOL)treats;
- (void)setDirectoryURL:(NSURL*)url;
- (NSInteger)runModal;
@end

@interface NSOpenPanel : NSSavePanel
+ (NSOpenPanel*)openPanel;
- (NSArray*)URLs;
- (void)setCanChooseDirectories:(BOOL)can;
- (void)setCanChooseFiles:(BOOL)can;
- (void)setAllowsMultipleSelection:(BOOL)allows;
- (void)beginSheetForDirectory:(NSString*)folder
                          file:(NSString*)file
                         types:(NSArray*)types
                modalForWindow:(NSWindow*)window
                 modalDelegate:(id)delegate
                didEndSelector:(SEL)selector
                   contextInfo:(void*)context;
@end
